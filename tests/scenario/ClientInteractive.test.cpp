// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/Process.h"
#include "tests/scenario/TerminalProcess.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/readFile.h"
#include "tests/testPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using testing::HasSubstr;
using testing::Not;

/// How often a process has waited for something so far.
long timesWaited(pid_t process) {
    std::istringstream status(readFile("/proc/" + std::to_string(process) + "/status"));
    std::string const wanted = "voluntary_ctxt_switches:";
    for (std::string word; status >> word;) {
        long count = 0;
        if (word == wanted && status >> count) { return count; }
    }
    throw std::runtime_error("no " + wanted);
}

/// A daemon at a Unix-domain socket, which it can come back to, and a client at a terminal.
class ClientInteractive : public testing::Test {
protected:
    ClientInteractive() { startDaemon(); }

    void startDaemon() {
        daemon_.reset();
        daemon_ = std::make_unique<DaemonProcess>(
            std::vector<std::string>{"--network", network_, "--listen", "127.0.0.1", "--listen", "unix:" + socket_});
        // The node has told what it is, and nothing happens by itself any more.
        ASSERT_EQ(Process({programPath("quillet"), "--socket", socket_, "interview", "2"}).wait(), 0);
    }

    std::unique_ptr<TerminalProcess> client(unsigned short columns = 80) const {
        auto started =
            std::make_unique<TerminalProcess>(std::vector<std::string>{programPath("quillet"), "--socket", socket_},
                                              columns, std::vector<std::string>{"XDG_STATE_HOME=" + directory_.path()});
        started->waitFor("\"exit\" leaves");
        started->waitFor(prompt);
        return started;
    }

    /// Has node 2 report, which every client hears of.
    void report() const {
        Process sender({programPath("quillet"), "--socket", socket_, "send", "2", "25", "02"});
        EXPECT_EQ(sender.wait(), 0);
    }

    static constexpr char const* prompt = "quillet> ";
    static constexpr char const* reported = "CommandClassMsg           sourceAddr=c0ffee01:2";

    TemporaryDirectory directory_;
    std::string network_ = directory_.write("network.json", R"({"homeId": "c0ffee01", "nodes": [
        {"id": 2, "latencyMs": 1}, {"id": 33, "latencyMs": 1}], "joining": [], "leaving": []})");
    std::string socket_ = directory_.path("socket");
    std::unique_ptr<DaemonProcess> daemon_;
};

TEST_F(ClientInteractive, RunsCommandsUntilItIsToldToLeave) {
    auto const shell = client();
    shell->type("ping 2 --count 1\r");
    shell->waitFor("1 sent, 1 answered, 0 lost");
    shell->waitFor(prompt);
    shell->type("nodes --no-header\r");
    shell->waitFor("33 ");
    shell->waitFor(prompt);
    shell->type("help\r");
    shell->waitFor("Subcommands:");
    shell->waitFor(prompt);
    shell->type("exit\r");
    EXPECT_EQ(shell->wait(), 0);
    auto const other = client();
    other->type("qui\t"); // who completes a word has the terminal; before that, the key would be the kernel's
    other->waitFor("t ");
    other->type("\x15"); // takes the line away
    other->type(key::endOfInput);
    EXPECT_EQ(other->wait(), 0);
}

TEST_F(ClientInteractive, ErrorIsSaidAndTheNextLineIsRead) {
    auto const shell = client();
    shell->type("nodse\r");
    shell->waitFor("quillet: unknown command \"nodse\"; did you mean \"node\"?");
    shell->waitFor(prompt);
    shell->type("nödes\r"); // the keys are UTF-8
    shell->waitFor("quillet: unknown command \"nödes\"; did you mean \"nodes\"?");
    shell->waitFor(prompt);
    shell->type("node 77\r");
    shell->waitFor("quillet: node: the network has no node 77");
    shell->waitFor(prompt);
    shell->type("node 2 --output=tabel\r");
    shell->waitFor("unknown form \"tabel\"; did you mean \"table\"?");
}

TEST_F(ClientInteractive, CompletesCommandsOptionsAndTexts) {
    auto const shell = client();
    shell->type("inter\t2\r");
    shell->waitFor("view 2");
    shell->waitFor("finish");
    shell->waitFor(prompt);
    shell->type("nodes --vi\tcmdClasses\r");
    shell->waitFor("Command Classes");
    shell->waitFor(prompt);
    shell->type("info --view ca\t\r");
    shell->waitFor("FW version:");
    shell->waitFor(prompt);
    shell->type("nvm \t");
    shell->waitFor("check  clear  restore  save  validate");
}

TEST_F(ClientInteractive, CompletesClassesMembersAndTheirTexts) {
    auto const shell = client();
    shell->type("request NodeI\t");
    shell->waitFor("nformationMsg ");
    shell->type("{\"op\t");
    shell->waitFor("eration_\":");
    shell->type("\"g\t");
    shell->waitFor("et\"");
    shell->type(",\"displayO\t");
    shell->waitFor("ptions_\":");
    shell->type("\t\t"); // the quote, and then all that can stand there
    shell->waitFor("\"all\"  \"cmdClassDetail\"");
    shell->waitFor(prompt);
    shell->type("inf\t}\r");
    shell->waitFor("NodeId  Basic");
}

TEST_F(ClientInteractive, CompletesTheNodesThatExist) {
    auto const shell = client();
    shell->type("node \t");
    shell->waitFor("1  2  33");
    shell->type("3\t\r");
    shell->waitFor("c0ffee01:33");
    shell->waitFor(prompt);
    shell->type("send 2,3\t25 02\r");
    shell->waitFor("\"success\"");
    shell->waitFor(R"({"homeId_":0,"nodeId_":33})");
}

TEST_F(ClientInteractive, HistoryOutlivesTheSession) {
    {
        auto const shell = client();
        shell->type("node 33\r");
        shell->waitFor("c0ffee01:33");
        shell->waitFor(prompt);
        daemon_->signal(SIGSTOP); // the client is killed as it runs, and has kept what was typed
    }
    daemon_->signal(SIGCONT);
    EXPECT_THAT(readFile(directory_.path("quillet/history")), HasSubstr("node\\04033"));
    auto const shell = client();
    shell->type(key::up);
    shell->waitFor("node 33");
    shell->type("\r");
    shell->waitFor("c0ffee01:33");
}

TEST_F(ClientInteractive, EventsAreShownAboveTheLineThatIsTyped) {
    auto const shell = client();
    shell->type("ping 33 --co");
    shell->waitFor("ping 33 --co");
    report();
    shell->waitFor(reported);
    shell->waitFor("\r\nquillet> ping 33 --co"); // as it was
    shell->type("unt 1\r");
    shell->waitFor("00000000:33");
    shell->waitFor("1 sent, 1 answered");
}

TEST_F(ClientInteractive, LineOfTwoRowsIsTakenAwayAsAWholeForAnEvent) {
    auto const shell = client(40);
    shell->type("ping 33 --count 1 --interval 0.1 --timeout 3");
    shell->waitFor("--timeout 3");
    report();
    shell->waitFor("\x1b[1A\r\x1b[J"); // up from the second row
    shell->waitFor("CommandClas…");
    shell->waitFor("--timeout 3");
    shell->type("0\r");
    shell->waitFor("1 sent, 1 answered");
}

TEST_F(ClientInteractive, EventsOfTheTimeOfACommandAreShownAfterIt) {
    auto const shell = client();
    shell->type("ping 33 --interval 3600\r");
    shell->waitFor("00000000:33");
    report();
    shell->type(key::interrupt);
    shell->waitFor("^C\r\n1 sent, 1 answered");
    shell->waitFor(reported);
    shell->waitFor(prompt);
    shell->type("exit\r");
    EXPECT_EQ(shell->wait(), 0);
    auto const& shown = shell->shown();
    EXPECT_EQ(shown.find("^C"), shown.rfind("^C")); // it ended the command and is not for the next line
}

TEST_F(ClientInteractive, InterruptionTakesTheLineOrEndsTheCommand) {
    auto const shell = client();
    shell->type("rubbish");
    shell->waitFor("rubbish");
    shell->type(key::interrupt);
    shell->waitFor("^C");
    shell->waitFor(prompt);
    shell->type("include\r");
    shell->waitFor("in progress");
    shell->type(key::interrupt);
    shell->waitFor("quillet: include: the mode has ended: failure");
    shell->waitFor(prompt);
    shell->type("include\r");
    shell->waitFor("in progress");
    daemon_->signal(SIGSTOP);
    shell->type(key::interrupt);
    shell->waitFor("a second interruption leaves at once");
    shell->type(key::interrupt);
    shell->waitFor(prompt);
    daemon_->signal(SIGCONT);
    shell->type("exit\r");
    EXPECT_EQ(shell->wait(), 0);
    EXPECT_THAT(shell->shown(), Not(HasSubstr("unknown command")));
}

TEST_F(ClientInteractive, DaemonThatGoesAwayAndComesBackIsHeardOfAgain) {
    auto const shell = client();
    shell->type("node 3");
    shell->waitFor("node 3");
    daemon_->signal(SIGTERM);
    EXPECT_EQ(daemon_->wait(), 0);
    shell->waitFor("quillet: lost the connection to the daemon: ");
    shell->waitFor("; trying again");
    shell->waitFor("quillet> node 3");
    startDaemon();
    shell->waitFor("quillet: connected again");
    shell->waitFor("quillet> node 3");
    report();
    shell->waitFor(reported); // it has subscribed again
    shell->type("3\r");
    shell->waitFor("c0ffee01:33");
}

TEST_F(ClientInteractive, InterruptionEndsTheWaitForADaemonThatIsSilent) {
    daemon_->signal(SIGSTOP);
    TerminalProcess shell({programPath("quillet"), "--socket", socket_, "--timeout", "3600"}, 80,
                          {"XDG_STATE_HOME=" + directory_.path()});
    shell.waitFor("\"exit\" leaves");
    shell.type(key::interrupt);
    shell.waitFor(prompt);
    daemon_->signal(SIGCONT);
}

TEST_F(ClientInteractive, TerminationGivesTheTerminalBack) {
    for (auto const signal : {SIGTERM, SIGHUP}) {
        auto const shell = client();
        shell->type("nvm \t");
        shell->waitFor("check  clear"); // so it is the client that edits
        EXPECT_FALSE(shell->editsLines());
        shell->signal(signal);
        EXPECT_EQ(shell->wait(), 128 + signal);
        EXPECT_TRUE(shell->editsLines());
    }
}

TEST_F(ClientInteractive, TerminationEndsACommandAsWell) {
    auto const shell = client();
    shell->type("ping 33 --interval 3600\r");
    shell->waitFor("00000000:33");
    shell->signal(SIGTERM);
    EXPECT_EQ(shell->wait(), 128 + SIGTERM);
    EXPECT_TRUE(shell->editsLines());
}

TEST_F(ClientInteractive, EndOfInputThatIsTypedBeforeThePromptLeaves) {
    daemon_->signal(SIGSTOP); // so that the prompt waits
    TerminalProcess shell({programPath("quillet"), "--socket", socket_}, 80, {"XDG_STATE_HOME=" + directory_.path()});
    shell.waitFor("\"exit\" leaves");
    shell.type(key::endOfInput);
    daemon_->signal(SIGCONT);
    EXPECT_EQ(shell.wait(), 0);
}

TEST_F(ClientInteractive, WaitsForKeysWithoutWork) {
    auto const shell = client();
    auto const before = timesWaited(shell->pid());
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_LE(timesWaited(shell->pid()) - before, 3);
}

TEST_F(ClientInteractive, CommandWithoutADaemonSaysSoAndTheNextOneIsRead) {
    auto const shell = client();
    daemon_->signal(SIGTERM);
    EXPECT_EQ(daemon_->wait(), 0);
    shell->waitFor("lost the connection");
    shell->type("nodes\r");
    shell->waitFor("quillet: cannot connect to " + socket_);
    shell->waitFor(prompt);
    shell->type("example PingMsg\r");
    shell->waitFor("zorv::PingMsg");
}

TEST_F(ClientInteractive, NothingIsDestroyedUnasked) {
    auto const shell = client();
    shell->type("quit\r");
    shell->waitFor("quit ends the daemon, and exit leaves the client. Go on? [y/N] ");
    shell->type("n\r");
    shell->waitFor("nothing was done");
    shell->waitFor(prompt);
    shell->type("reset\r");
    shell->waitFor("Go on? [y/N] ");
    shell->type("\r");
    shell->waitFor("nothing was done");
    shell->waitFor(prompt);
    shell->type("quit\r");
    shell->waitFor("Go on? [y/N] ");
    shell->type("y\r");
    EXPECT_EQ(daemon_->wait(), 0);
}

TEST_F(ClientInteractive, LineFollowsATerminalThatIsResized) {
    auto const shell = client(80);
    shell->resize(30);
    shell->type("catalogue\r");
    shell->waitFor("…");
    shell->waitFor(prompt);
}

TEST(ClientWithoutATerminal, IsNotInteractive) {
    Process client({programPath("quillet")});
    EXPECT_EQ(client.wait(), 2);
    EXPECT_THAT(client.errors(), HasSubstr("quillet: a command is missing\n"));
}

} // namespace
