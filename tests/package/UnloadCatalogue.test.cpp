// SPDX-License-Identifier: Apache-2.0
// This program links to the platform but not to libquillet.so, so that the catalogue comes and goes with dlopen.

#include "platform/libtransport/SerialRegistrar.h"
#include "tests/testPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <string>
#include <vector>

namespace {

using testing::Contains;
using testing::Not;

bool isLoaded(char const* path) {
    void* const again = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (again != nullptr) { dlclose(again); }
    return again != nullptr;
}

TEST(UnloadCatalogue, LoadingRegistersTheNamesAndUnloadingTakesThemAway) {
    std::vector<std::string> const before = zorv::SerialRegistry::names();
    ASSERT_THAT(before, Not(Contains("zorv::PingMsg")));

    void* const library = dlopen(zorv::libraryPath().c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_THAT(zorv::SerialRegistry::names(), Contains("zorv::PingMsg"));
    EXPECT_FALSE(zorv::SerialRegistry::find("zorv::PingMsg").empty());

    ASSERT_EQ(dlclose(library), 0) << dlerror();
    EXPECT_FALSE(isLoaded(zorv::libraryPath().c_str()));
    EXPECT_EQ(zorv::SerialRegistry::names(), before);
    EXPECT_TRUE(zorv::SerialRegistry::find("zorv::PingMsg").empty());
}

TEST(UnloadCatalogue, ItCanBeLoadedAgainAfterItWasUnloaded) {
    for (int round = 0; round < 3; ++round) {
        void* const library = dlopen(zorv::libraryPath().c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        EXPECT_THAT(zorv::SerialRegistry::names(), Contains("zorv::PingMsg"));
        ASSERT_EQ(dlclose(library), 0) << dlerror();
        EXPECT_THAT(zorv::SerialRegistry::names(), Not(Contains("zorv::PingMsg")));
    }
}

} // namespace
