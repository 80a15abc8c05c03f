// SPDX-License-Identifier: Apache-2.0
// This program links to the platform but not to libquillet.so, so that the catalogue comes and goes with dlopen.

#include "platform/libtransport/SerialRegistrar.h"
#include "platform/libtransport/readSerializable.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/testPaths.h"

#include <boost/shared_ptr.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
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

/// Those of files: how many the heap has is its own affair, and a sanitizer's heap grows.
int countMappings() {
    std::ifstream maps("/proc/self/maps");
    int count = 0;
    for (std::string line; std::getline(maps, line);) { count += line.find('/') != std::string::npos ? 1 : 0; }
    return count;
}

std::string textOf(std::string const& name) { return R"({"__name__":"zorv::)" + name + "\"}"; }

TEST(UnloadCatalogue, ItCanBeLoadedAHundredTimes) {
    std::vector<std::string> const before = zorv::SerialRegistry::names();
    std::vector<std::string> loaded;
    int mappings = 0;
    for (int round = 1; round <= 100; ++round) {
        void* const library = dlopen(zorv::libraryPath().c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        auto const names = zorv::SerialRegistry::names();
        if (round == 1) { loaded = names; }
        ASSERT_EQ(names, loaded) << round;
        EXPECT_NE(zorv::readSerializable(textOf("PingMsg")), nullptr);
        ASSERT_EQ(dlclose(library), 0) << dlerror();
        ASSERT_EQ(zorv::SerialRegistry::names(), before) << round;
        if (round == 10) { mappings = countMappings(); }
    }
    EXPECT_THAT(loaded, Contains("zorv::PingMsg"));
    EXPECT_EQ(countMappings(), mappings);
}

/// The catalogue, and another file of the same contents.
class TwoCatalogues : public testing::Test {
protected:
    TwoCatalogues() : copy_(directory_.path("libquillet-copy.so")) {
        std::filesystem::copy_file(zorv::libraryPath(), copy_);
    }

    static void* load(std::string const& path) {
        void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        EXPECT_NE(library, nullptr) << dlerror();
        return library;
    }

    zorv::TemporaryDirectory directory_;
    std::string copy_;
};

TEST_F(TwoCatalogues, InOneProcessAreOneAndTheSecondIsRefusedNameByName) {
    auto const before = zorv::SerialRegistry::names();
    void* const first = load(zorv::libraryPath());
    auto const loaded = zorv::SerialRegistry::names();
    std::set<std::string> own(loaded.begin(), loaded.end());
    for (std::string const name : {"zorv::Device", "zorv::RawCommand"}) { own.erase(name); } // of a library below it
    ASSERT_GT(own.size(), 20U);
    std::multiset<std::string> expected;
    for (auto const& name : own) { expected.insert("WARN SerialRegistrar: " + name + " is registered already"); }
    std::multiset<std::string> refused;
    void* second = nullptr;
    {
        zorv::LogCapture const log;
        second = load(copy_);
        auto const lines = log.lines();
        refused.insert(lines.begin(), lines.end());
    }
    EXPECT_EQ(refused, expected);
    EXPECT_EQ(zorv::SerialRegistry::names(), loaded);
    EXPECT_NE(zorv::readSerializable(textOf("PingMsg")), nullptr);

    ASSERT_EQ(dlclose(second), 0); // the first one's names stay
    EXPECT_EQ(zorv::SerialRegistry::names(), loaded);
    EXPECT_NE(zorv::readSerializable(textOf("PingMsg")), nullptr);
    ASSERT_EQ(dlclose(first), 0);
    EXPECT_EQ(zorv::SerialRegistry::names(), before);
}

TEST_F(TwoCatalogues, LeaveNoNameBehindThatNothingStandsFor) {
    auto const before = zorv::SerialRegistry::names();
    void* const first = load(zorv::libraryPath());
    void* const second = load(copy_);
    ASSERT_EQ(dlclose(first), 0);
    // The linker keeps it as long as the second has something of it, and then its names as well.
    auto const names = zorv::SerialRegistry::names();
    if (std::find(names.begin(), names.end(), "zorv::PingMsg") != names.end()) {
        EXPECT_NE(zorv::readSerializable(textOf("PingMsg")), nullptr);
    } else {
        EXPECT_ANY_THROW(zorv::readSerializable(textOf("PingMsg")));
    }
    ASSERT_EQ(dlclose(second), 0);
    EXPECT_EQ(zorv::SerialRegistry::names(), before);
    void* const again = load(zorv::libraryPath());
    EXPECT_NE(zorv::readSerializable(textOf("PingMsg")), nullptr);
    ASSERT_EQ(dlclose(again), 0);
}

} // namespace
