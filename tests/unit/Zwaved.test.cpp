// SPDX-License-Identifier: Apache-2.0
#include "platform/libzwaved/Zwaved.h"

#include "platform/libzorvshared/KernelX.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include <sys/utsname.h>

namespace zorv {
namespace {

TEST(Zwaved, IsOneObjectInTheProcess) { EXPECT_EQ(&Zwaved::instance(), &Zwaved::instance()); }

TEST(Zwaved, GivesTheControllerThatTheDaemonSetLast) {
    auto const before = Zwaved::instance().controller();
    Zwaved::instance().controller(Controller(0xC0FFEE01, 1));
    EXPECT_EQ(Zwaved::instance().controller().homeId(), 0xC0FFEE01U);
    EXPECT_EQ(Zwaved::instance().controller().nodeId(), 1);
    Zwaved::instance().controller(Controller(0xC0FFEE02, 2));
    EXPECT_EQ(Zwaved::instance().controller().homeId(), 0xC0FFEE02U);
    EXPECT_EQ(Zwaved::instance().controller().nodeId(), 2);
    Zwaved::instance().controller(before);
}

TEST(Zwaved, HasAControllerWithoutANetworkBeforeTheDaemonSetsOne) {
    // A test that sets another one puts this one back.
    EXPECT_EQ(Zwaved::instance().controller().homeId(), 0U);
    EXPECT_EQ(Zwaved::instance().controller().nodeId(), 0);
}

TEST(KernelX, NumbersTheArchitectureOfTheRunningKernel) {
    utsname system{};
    ASSERT_EQ(uname(&system), 0);
    std::map<std::string, int> const known{{"i386", 1},   {"i486", 1},   {"i586", 1},   {"i686", 1},
                                           {"x86_64", 2}, {"armv6l", 3}, {"armv7l", 3}, {"aarch64", 4}};
    auto const number = known.find(system.machine);
    EXPECT_EQ(KernelX::GetSystemType(), number != known.end() ? number->second : 0) << system.machine;
}

} // namespace
} // namespace zorv
