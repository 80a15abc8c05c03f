// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Progress.h"
#include "tests/scenario/Process.h"
#include "tests/scenario/TerminalProcess.h"
#include "tests/support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using testing::HasSubstr;
using testing::Not;

constexpr int interrupted = 130;
constexpr char const* clearLine = "\r\x1b[K";

// ---- the line

TEST(ClientProgress, LineHasABarTheRateAndTheTimeThatIsLeft) {
    EXPECT_EQ(progressLine("nvm save", {40, "", std::chrono::seconds(8)}, 60),
              "nvm save [########--------------]   40 %  5.0 %/s  12 s left");
    EXPECT_EQ(progressLine("nvm save", {1, "", std::chrono::seconds(10)}, 60),
              "nvm save [-----------------]    1 %  0.1 %/s  16:30 min left");
}

TEST(ClientProgress, LineThatHasBegunOrIsDoneHasNothingToEstimate) {
    EXPECT_EQ(progressLine("x", {0, "", std::chrono::seconds(1)}, 20), "x [---------]    0 %");
    EXPECT_EQ(progressLine("x", {100, "", std::chrono::seconds(1)}, 20), "x [#########]  100 %");
}

TEST(ClientProgress, NarrowTerminalHasNoBarAndNoLineIsWiderThanIt) {
    EXPECT_EQ(progressLine("nvm save", {40, "", std::chrono::seconds(0)}, 20), "nvm save:   40 %");
    EXPECT_EQ(progressLine("nvm save", {40, "", std::chrono::seconds(0)}, 10), "nvm save:…");
}

TEST(ClientProgress, WorkWithoutAPercentageTellsItsStateAndItsTimes) {
    EXPECT_EQ(progressLine("include", {{}, "waiting", std::chrono::seconds(12)}, 60), "include: waiting, 12 s");
    EXPECT_EQ(progressLine("include", {{}, "waiting", std::chrono::seconds(12), std::chrono::seconds(180)}, 60),
              "include: waiting, 12 s, ends in 2:48 min");
}

// ---- on a terminal

/// A daemon whose memory takes its time to be read, and where nobody comes.
class ClientProgressShown : public testing::Test {
protected:
    std::vector<std::string> command(std::vector<std::string> const& words) const {
        return clientCommand(daemon_.port(), words);
    }

    TemporaryDirectory directory_;
    DaemonProcess daemon_{{"--network", directory_.write("network.json", R"({"homeId": "c0ffee01",
        "module": {"nvmSize": 65536}, "nodes": [{"id": 2, "latencyMs": 1}], "joining": [], "leaving": []})")}};
};

TEST_F(ClientProgressShown, BarGrowsInOneLineThatIsGoneAtTheEnd) {
    TerminalProcess client(command({"nvm", "save", directory_.path("backup.json")}));
    client.waitFor(std::string(clearLine) + "nvm save [");
    client.waitFor("#");
    client.waitFor(" %/s  ");
    client.waitFor(" s left");
    EXPECT_EQ(client.wait(), 0);
    auto const& shown = client.shown();
    auto const last = shown.rfind("nvm save [");
    EXPECT_EQ(shown.find('\n') > last, true) << shown; // all states share a line
    EXPECT_THAT(shown.substr(last), HasSubstr(clearLine));
}

TEST_F(ClientProgressShown, BarFollowsTheWidthOfItsTerminal) {
    TerminalProcess client(command({"include", "--timeout", "600"}), 80);
    client.waitFor("include: in progress, 0 s, ends in 10:00 min");
    client.resize(20);
    client.waitFor("…"); // the line that is written each second
    client.type(key::interrupt);
    EXPECT_EQ(client.wait(), interrupted);
}

TEST_F(ClientProgressShown, TerminalThatDoesNotTellItsWidthHasTheUsualOne) {
    TerminalProcess client(command({"include"}), 0);
    client.waitFor("include: in progress, ");
    client.type(key::interrupt);
    EXPECT_EQ(client.wait(), interrupted);
}

TEST_F(ClientProgressShown, InterruptionEndsTheModeAndASecondOneLeavesAtOnce) {
    TerminalProcess client(command({"include"}));
    client.waitFor("in progress");
    client.type(key::interrupt);
    client.waitFor("quillet: include: interrupted; the mode is being ended");
    client.waitFor("quillet: include: the mode has ended: failure");
    EXPECT_EQ(client.wait(), interrupted);
    TerminalProcess next(command({"include"}));
    next.waitFor("in progress"); // the first one has ended, so this one is not rejected
    daemon_.signal(SIGSTOP);
    next.type(key::interrupt);
    next.waitFor("a second interruption leaves at once");
    next.type(key::interrupt);
    EXPECT_EQ(next.wait(), interrupted);
    daemon_.signal(SIGCONT);
    EXPECT_THAT(next.shown(), Not(HasSubstr("has ended")));
}

TEST_F(ClientProgressShown, WithoutATerminalEachTenthIsALine) {
    Process client(command({"nvm", "save", directory_.path("backup.json")}));
    EXPECT_EQ(client.wait(), 0);
    std::string expected;
    for (int percent = 10; percent <= 100; percent += 10) {
        expected += "quillet: nvm save: " + std::to_string(percent) + " %\n";
    }
    auto const errors = client.errors();
    EXPECT_EQ(errors.substr(errors.find("quillet: nvm save: 10 %")), expected);
}

} // namespace
