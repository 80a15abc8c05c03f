// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/EventLoop.h"
#include "platform/libio/SerialPort.h"
#include "tests/scenario/StreamDaemon.h"
#include "tests/scenario/runLoop.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/systemText.h"
#include "tests/testPaths.h"
#include "zwave/libserialapi/Module.h"

#include <boost/filesystem/operations.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;

namespace api = serialapi;

/// A host on a serial port.
class Host {
public:
    explicit Host(std::string const& device) : port_(loop_, device) {
        PortHandlers handlers;
        handlers.received = [this](std::vector<std::uint8_t> const& bytes) {
            module_.receive(bytes, now());
            carry();
        };
        handlers.closed = [this](std::string const& reason) {
            closed_ = reason;
            loop_.stop();
        };
        port_.start(std::move(handlers));
        module_.start();
        carry();
    }

    template <class F> std::optional<typename F::Response> ask(typename F::Request const& request = {}) {
        std::optional<typename F::Response> answer;
        api::CallHandlers<F> handlers;
        handlers.response = [&answer](typename F::Response const& response) { answer = response; };
        handlers.end = [this](api::CallEnd) { loop_.stop(); };
        module_.call<F>(request, std::move(handlers), now());
        carry();
        runLoop(loop_);
        return answer;
    }

    /// Calls a function that ends the port; why that was.
    template <class F> std::string closedBy() {
        module_.call<F>({}, {}, now());
        carry();
        runLoop(loop_);
        return closed_;
    }

private:
    static api::TimePoint now() { return std::chrono::steady_clock::now(); }

    void carry() {
        port_.write(module_.takeOutput());
        auto const deadline = module_.deadline();
        if (!deadline) { return next_.cancel(); }
        auto const delay = std::chrono::ceil<std::chrono::milliseconds>(*deadline - now());
        next_ = Timer(loop_, delay, [this] {
            module_.tick(now());
            carry();
        });
    }

    EventLoop loop_;
    SerialPort port_;
    api::Module module_;
    Timer next_;
    std::string closed_;
};

std::uint32_t homeIdAt(std::string const& device) {
    auto const answer = Host(device).ask<api::MemoryGetId>();
    return answer ? answer->homeId : 0;
}

TEST(ModuleProgram, PlaysTheBuiltInNetworkOnItsDeviceForOneHostAfterTheOther) {
    SimProcess module;
    auto const device = module.device();
    EXPECT_EQ(homeIdAt(device), 0xC0FFEE01U);
    EXPECT_EQ(homeIdAt(device), 0xC0FFEE01U);
    module.signal(SIGTERM);
    EXPECT_EQ(module.wait(), 0);
    EXPECT_TRUE(module.restOfOutput().empty());
    EXPECT_EQ(module.errors(), "");
}

TEST(ModuleProgram, PlaysTheNetworkOfAFile) {
    SimProcess module({"--network", sourcePath("examples/networks/every-member.json")});
    Host host(module.device());
    EXPECT_EQ(host.ask<api::MemoryGetId>()->homeId, 0xD00DAD02U);
    EXPECT_EQ(host.ask<api::GetVersion>()->version, "Z-Wave 7.19");
}

TEST(ModuleProgram, TakesAnotherSeed) {
    auto const random = [](std::string const& seed) {
        SimProcess module({"--seed", seed});
        return Host(module.device()).ask<api::GetRandom>({api::Byte{32}})->random;
    };
    EXPECT_EQ(random("5"), random("5"));
    EXPECT_NE(random("5"), random("6"));
}

TEST(ModuleProgram, HasALinkToItsDeviceAsLongAsItRuns) {
    TemporaryDirectory const directory;
    auto const link = directory.path("module");
    boost::filesystem::create_symlink("/dev/pts/99999", link); // left behind by one that was killed
    SimProcess module({"--link", link});
    auto const device = module.device();
    EXPECT_EQ(boost::filesystem::read_symlink(link).string(), device);
    EXPECT_EQ(homeIdAt(link), 0xC0FFEE01U);
    module.signal(SIGINT);
    EXPECT_EQ(module.wait(), 0);
    EXPECT_FALSE(boost::filesystem::is_symlink(boost::filesystem::symlink_status(link)));
}

TEST(ModuleProgram, LeavesALinkAloneThatSomebodyElseHasMade) {
    TemporaryDirectory const directory;
    auto const link = directory.path("module");
    SimProcess first({"--link", link});
    first.device();
    SimProcess second({"--link", link});
    auto const device = second.device();
    first.signal(SIGTERM);
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(boost::filesystem::read_symlink(link).string(), device);
}

TEST(ModuleProgram, ReplacesNothingButLinks) {
    TemporaryDirectory const directory;
    auto const file = directory.write("module", "x");
    SimProcess module({"--link", file});
    EXPECT_EQ(module.wait(), 1);
    EXPECT_EQ(module.errors(), "zwavesim: cannot make the link " + file + ": " + systemText(EEXIST) + "\n");
    EXPECT_TRUE(module.restOfOutput().empty());
    SimProcess nowhere({"--link", directory.path("none/module")});
    EXPECT_EQ(nowhere.wait(), 1);
    EXPECT_EQ(nowhere.errors(),
              "zwavesim: cannot make the link " + directory.path("none/module") + ": " + systemText(ENOENT) + "\n");
}

TEST(ModuleProgram, TakesItsDeviceAwayAndBringsItBack) {
    TemporaryDirectory const directory;
    auto const link = directory.path("module");
    auto const file =
        directory.write("net.json", "{\"homeId\": \"c0ffee02\", \"nodes\": [],"
                                    " \"faults\": [{\"what\": \"vanish\", \"function\": \"15\", \"lastsMs\": 300}]}");
    SimProcess module({"--network", file, "--link", link});
    module.device();
    Host host(link);
    EXPECT_EQ(host.ask<api::MemoryGetId>()->homeId, 0xC0FFEE02U);
    EXPECT_EQ(host.closedBy<api::GetVersion>(), "the device is gone");
    EXPECT_FALSE(boost::filesystem::is_symlink(boost::filesystem::symlink_status(link)));
    auto const isBack = [&link] { return boost::filesystem::is_symlink(boost::filesystem::symlink_status(link)); };
    auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    EventLoop loop;
    while (!isBack() && std::chrono::steady_clock::now() < end) {
        Timer const look(loop, std::chrono::milliseconds(10), [&loop] { loop.stop(); });
        loop.run();
    }
    EXPECT_EQ(homeIdAt(link), 0xC0FFEE02U);
}

TEST(ModuleProgram, RefusesABadNetworkAndWrongUsage) {
    TemporaryDirectory const directory;
    auto const file = directory.write("net.json", "{\"homeId\": \"c0ffee01\"}");
    SimProcess module({"--network", file});
    EXPECT_EQ(module.wait(), 1);
    EXPECT_EQ(module.errors(), "zwavesim: " + file + ":1: nodes: is missing\n");
    EXPECT_TRUE(module.restOfOutput().empty());
    auto const firstError = [](std::vector<std::string> const& arguments) {
        SimProcess wrong(arguments);
        EXPECT_EQ(wrong.wait(), 2);
        auto const text = wrong.errors();
        return text.substr(0, text.find('\n'));
    };
    EXPECT_EQ(firstError({"--seed", "-1"}), "zwavesim: --seed: expected a whole number from 0 to 4294967295, got -1");
    EXPECT_EQ(firstError({"surplus"}), "zwavesim: unexpected argument \"surplus\"");
    EXPECT_EQ(firstError({"--lnk", "x"}), "zwavesim: unknown option \"--lnk\"; did you mean \"--link\"?");
}

TEST(ModuleProgram, ShowsTheFramesAsLinesThatTheClientReads) {
    SimProcess module({"--log-level", "debug"});
    homeIdAt(module.device());
    module.signal(SIGTERM);
    EXPECT_EQ(module.wait(), 0);
    auto const log = module.errors();
    EXPECT_THAT(log, testing::HasSubstr(" DEBUG host 01 03 00 20 dc\n"));
    EXPECT_THAT(log, testing::HasSubstr(" DEBUG module 01 08 01 20 c0 ff ee 01 01"));
}

} // namespace
