#include "tests/scenario/LineClient.h"
#include "tests/scenario/Process.h"
#include "tests/testPaths.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace scenario;

void expectService(LineClient& client) {
    ASSERT_TRUE(client.sendLine(pingLine(1)));
    EXPECT_EQ("PingMsg", client.receive()->name());
}

TEST(BadPeers, OneThatDoesNotReadIsDroppedAndTheOthersAreServed) {
    DaemonProcess const daemon({"--max-backlog", "100000"});
    LineClient good(daemon.port());
    LineClient stalled(daemon.port(), 4096);
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
    LineClient slow(daemon.port(), 4096);
    for (int i = 0; i < 2000; ++i) { ASSERT_TRUE(slow.sendLine(pingLine(1))); }
    for (int i = 0; i < 2000; ++i) { EXPECT_EQ("PingMsg", slow.receive()->name()); }
}

TEST(BadPeers, HalfALineBlocksNobody) {
    DaemonProcess const daemon;
    LineClient slow(daemon.port());
    LineClient good(daemon.port());
    auto const line = pingLine(1);
    ASSERT_TRUE(slow.send(line.substr(0, 100)));
    expectService(good);
    ASSERT_TRUE(slow.send(line.substr(100)));
    expectService(good);
    ASSERT_TRUE(slow.send("\n"));
    EXPECT_EQ("PingMsg", slow.receive()->name());
}

TEST(BadPeers, OnesThatVanishInTheMiddleOfALineHarmNobody) {
    DaemonProcess const daemon;
    LineClient good(daemon.port());
    for (int i = 0; i < 20; ++i) {
        LineClient closing(daemon.port());
        LineClient resetting(daemon.port());
        ASSERT_TRUE(closing.send(pingLine(1).substr(0, 100)));
        ASSERT_TRUE(resetting.send(pingLine(1).substr(0, 100)));
        closing.close();
        resetting.reset();
        expectService(good);
    }
}

TEST(BadPeers, OnesThatVanishBeforeTheirAnswersHarmNobody) {
    DaemonProcess const daemon;
    LineClient good(daemon.port());
    for (int i = 0; i < 20; ++i) {
        LineClient vanishing(daemon.port());
        ASSERT_TRUE(vanishing.sendLine(pingLine(5)));
        ASSERT_TRUE(vanishing.sendLine(pingLine(1)));
        vanishing.reset();
    }
    ASSERT_TRUE(good.sendLine(pingLine(6))); // answered after all of those would have been
    EXPECT_EQ("PingMsg", good.receive()->name());
    expectService(good);
}

// The undefined-behaviour sanitizer opens a pipe to look at objects, and takes a pipe that it cannot get for a bad object.
#ifndef __SANITIZE_ADDRESS__
TEST(BadPeers, MoreThanTheDaemonHasFileDescriptorsForAreServedOnceOthersLeave) {
    Process daemon({"/bin/sh", "-c", "ulimit -n 24; exec \"$0\" --port 0", zorv::programPath("zwaved")});
    auto const announcement = daemon.readLine();
    auto const port = static_cast<unsigned short>(std::stoul(announcement.substr(announcement.rfind(':') + 1)));
    std::vector<std::unique_ptr<LineClient>> crowd;
    for (int i = 0; i < 20; ++i) { crowd.push_back(std::make_unique<LineClient>(port)); }
    auto& last = *crowd.back();
    ASSERT_TRUE(last.sendLine(pingLine(1)));
    daemon.waitForError("cannot accept connections: Too many open files");
    expectService(*crowd.front());
    for (std::size_t i = 1; i + 1 < crowd.size(); ++i) { crowd[i]->close(); }
    EXPECT_EQ("PingMsg", last.receive()->name());
    expectService(*crowd.front());
}
#endif

} // namespace
