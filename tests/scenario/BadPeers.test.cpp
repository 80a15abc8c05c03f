// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/LineClient.h"
#include "tests/scenario/Process.h"
#include "tests/support/systemText.h"
#include "tests/testPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace scenario;
using testing::HasSubstr;

void expectService(LineClient& client) {
    ASSERT_TRUE(client.sendLine(pingLine(1)));
    EXPECT_EQ(client.receive()->name(), "PingMsg");
}

int count(std::string const& text, std::string const& what) {
    int found = 0;
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) { ++found; }
    return found;
}

TEST(BadPeers, OneThatDoesNotReadIsDroppedAndTheOthersAreServed) {
    DaemonProcess const daemon({"--max-backlog", "100000"});
    OpenClient good(daemon.port());
    OpenClient stalled(daemon.port(), 4096);
    std::string pings;
    for (int i = 0; i < 200; ++i) { pings += pingLine(1) + "\n"; }
    bool dropped = false;
    for (int i = 0; i < 500 && !dropped; ++i) {
        dropped = !stalled.send(pings);
        expectService(good);
    }
    EXPECT_TRUE(dropped);
    expectService(good);
}

TEST(BadPeers, OneThatReadsSlowlyGetsEverything) {
    DaemonProcess const daemon;
    OpenClient slow(daemon.port(), 4096);
    for (int i = 0; i < 2000; ++i) { ASSERT_TRUE(slow.sendLine(pingLine(1))); }
    for (int i = 0; i < 2000; ++i) { EXPECT_EQ(slow.receive()->name(), "PingMsg"); }
}

TEST(BadPeers, HalfALineBlocksNobody) {
    DaemonProcess const daemon;
    OpenClient slow(daemon.port());
    OpenClient good(daemon.port());
    auto const line = pingLine(1);
    ASSERT_TRUE(slow.send(line.substr(0, 100)));
    expectService(good);
    ASSERT_TRUE(slow.send(line.substr(100)));
    expectService(good);
    ASSERT_TRUE(slow.send("\n"));
    EXPECT_EQ(slow.receive()->name(), "PingMsg");
}

TEST(BadPeers, OnesThatVanishInTheMiddleOfALineHarmNobody) {
    DaemonProcess const daemon;
    OpenClient good(daemon.port());
    for (int i = 0; i < 20; ++i) {
        OpenClient closing(daemon.port());
        OpenClient resetting(daemon.port());
        ASSERT_TRUE(closing.send(pingLine(1).substr(0, 100)));
        ASSERT_TRUE(resetting.send(pingLine(1).substr(0, 100)));
        closing.close();
        resetting.reset();
        expectService(good);
    }
}

TEST(BadPeers, OnesThatVanishBeforeTheirAnswersHarmNobody) {
    DaemonProcess const daemon;
    OpenClient good(daemon.port());
    for (int i = 0; i < 20; ++i) {
        OpenClient vanishing(daemon.port());
        ASSERT_TRUE(vanishing.sendLine(pingLine(5)));
        ASSERT_TRUE(vanishing.sendLine(pingLine(1)));
        vanishing.reset();
    }
    ASSERT_TRUE(good.sendLine(pingLine(6))); // its answer comes after all of theirs
    EXPECT_EQ(good.receive()->name(), "PingMsg");
    expectService(good);
}

TEST(BadPeers, OneThatHoldsMostOfTheMemoryIsDroppedBeforeTheOthers) {
    DaemonProcess const daemon({"--max-memory", "1048576"});
    OpenClient large(daemon.port());
    ASSERT_TRUE(large.send(pingLine(1) + '\n' + std::string(400000, 'x'))); // half of it, when its buffer has grown
    EXPECT_EQ(large.receive()->name(), "PingMsg");
    std::vector<std::unique_ptr<OpenClient>> small;
    for (int i = 0; i < 12; ++i) {
        small.push_back(std::make_unique<OpenClient>(daemon.port()));
        ASSERT_TRUE(small.back()->send(std::string(60000, ' ')));
    }
    EXPECT_TRUE(large.endsAfter(0));
    for (auto& client : small) { expectService(*client); } // white space before a message is fine
}

TEST(BadPeers, NewcomersAreDroppedAtOnceWhileThereAreTooManyClients) {
    DaemonProcess daemon({"--max-clients", "2"});
    OpenClient first(daemon.port());
    OpenClient second(daemon.port());
    for (int i = 0; i < 3; ++i) { EXPECT_TRUE(LineClient(daemon.port()).endsAfter(0)); }
    expectService(second);
    first.close();
    for (;;) {
        LineClient next(daemon.port());
        try {
            next.receiveLine();
            break;
        } catch (std::out_of_range const&) {}
    }
    daemon.signal(SIGTERM);
    EXPECT_EQ(daemon.wait(), 0);
    EXPECT_EQ(count(daemon.errors(), "cannot accept connections: too many clients"), 1);
    EXPECT_EQ(count(daemon.errors(), "accepts connections again, "), 1);
}

TEST(BadPeers, OneThatSendsNothingButNewlinesIsDroppedAndLoggedAFewTimes) {
    DaemonProcess daemon;
    OpenClient good(daemon.port());
    OpenClient bad(daemon.port());
    ASSERT_TRUE(bad.send(std::string(5000, '\n')));
    EXPECT_TRUE(bad.endsAfter(101));
    bad.close();
    expectService(good);
    daemon.waitForError(" complaints about 127.0.0.1:");
    daemon.signal(SIGTERM);
    EXPECT_EQ(daemon.wait(), 0);
    EXPECT_LT(count(daemon.errors(), "bad line"), 12);
}

TEST(BadPeers, OneThatSendsMegabytesOfBracketsIsRejectedAndCostsTheOthersLittle) {
    constexpr std::size_t size = std::size_t{4} << 20U;
    std::string empties = "[";
    while (empties.size() < size) { empties += "[],"; }
    for (auto const& line : {std::string(size, '['), empties + "[]]"}) {
        DaemonProcess const daemon;
        OpenClient good(daemon.port());
        OpenClient bad(daemon.port());
        expectService(good);
        auto const before = daemon.processorTime();
        [[maybe_unused]] auto const atRest = daemon.memory("VmRSS");
        ASSERT_TRUE(bad.sendLine(line));
        expectService(good);
        EXPECT_EQ(bad.receive()->name(), "Confirmable");
        expectService(bad);
        // Not the time that passed, which depends on what else the machine does.
        EXPECT_LT((daemon.processorTime() - before).count(), 2000);
#ifndef __SANITIZE_ADDRESS__
#ifndef __SANITIZE_THREAD__ // needs memory of its own for each byte, as does that of addresses
        EXPECT_LT(daemon.memory("VmHWM") - atRest, 64 << 10);
#endif
#endif
    }
}

TEST(BadPeers, OneThatEndsItsOutputGetsItsAnswersBeforeTheEnd) {
    DaemonProcess const daemon;
    OpenClient client(daemon.port());
    ASSERT_TRUE(client.send(pingLine(9) + '\n' + pingLine(1) + '\n')); // the first answer takes 300 ms
    client.endOutput();
    EXPECT_TRUE(client.endsAfter(2));
}

TEST(BadPeers, LogThatNobodyReadsDoesNotStopTheDaemonAndCountsItsLostLines) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    Process daemon({"/bin/sh", "-c", "exec \"$0\" --port 0 --log-level debug 2> /dev/fd/" + std::to_string(ends[1]),
                    zorv::programPath("zwaved")});
    OpenClient client(announcedPort(daemon));
    for (int i = 0; i < 200; ++i) { expectService(client); } // some 800 bytes of log each, and a pipe holds 65536
    std::string log(65536, ' ');
    auto const size = ::read(ends[0], log.data(), log.size());
    EXPECT_GT(size, 30000);
    expectService(client);
    auto const rest = ::read(ends[0], log.data(), log.size());
    ASSERT_GT(rest, 0);
    log.resize(static_cast<std::size_t>(rest));
    EXPECT_THAT(log, HasSubstr(" lines dropped, nobody read them\n"));
    ::close(ends[0]);
    ::close(ends[1]);
}

// The undefined-behaviour sanitizer opens a pipe to look at objects, and takes a pipe that it cannot get for a bad object.
#ifndef __SANITIZE_ADDRESS__
#ifndef __SANITIZE_THREAD__ // reserves address space by the terabyte, as does that of addresses
TEST(BadPeers, OnesThatExhaustTheMemoryAreDropped) {
    Process daemon({"/bin/sh", "-c",
                    "ulimit -v 300000; exec \"$0\" --port 0 --max-memory 1073741824 --max-line 16000000",
                    zorv::programPath("zwaved")});
    auto const port = announcedPort(daemon);
    OpenClient good(port);
    std::vector<std::unique_ptr<LineClient>> crowd;
    std::string const unfinished(15000000, 'x');
    for (int i = 0; i < 30; ++i) {
        crowd.push_back(std::make_unique<OpenClient>(port));
        crowd.back()->send(unfinished);
        expectService(good);
    }
    daemon.signal(SIGTERM);
    EXPECT_EQ(daemon.wait(), 0);
}
#endif

TEST(BadPeers, NewcomersAreDroppedAtOnceWhenNoDescriptorIsLeft) {
    Process daemon({"/bin/sh", "-c", "ulimit -n 24; exec \"$0\" --port 0", zorv::programPath("zwaved")});
    auto const port = announcedPort(daemon);
    OpenClient first(port);
    std::vector<std::unique_ptr<LineClient>> crowd;
    for (int i = 0; i < 40; ++i) { crowd.push_back(std::make_unique<LineClient>(port)); }
    EXPECT_TRUE(crowd.back()->endsAfter(0));
    expectService(first);
    crowd.clear();
    for (;;) { // until the daemon has seen that the crowd is gone
        LineClient next(port);
        try {
            next.receiveLine();
            break;
        } catch (std::out_of_range const&) {}
    }
    daemon.signal(SIGTERM);
    EXPECT_EQ(daemon.wait(), 0);
    EXPECT_EQ(count(daemon.errors(), "cannot accept connections: " + zorv::systemText(EMFILE)), 1);
    EXPECT_EQ(count(daemon.errors(), "accepts connections again"), 1);
}
#endif

} // namespace
