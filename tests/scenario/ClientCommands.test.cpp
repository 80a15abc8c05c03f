// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/MessageClient.h"
#include "tests/scenario/Process.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/readFile.h"
#include "tests/testPaths.h"

#include "platform/libtransport/readMessage.h"
#include "zwave/libquillet/Catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

using Words = std::vector<std::string>;

constexpr int refused = 1;
constexpr int usage = 2;
constexpr int timedOut = 4;
constexpr int interrupted = 130;

constexpr char const* usualNodes =
    R"({"id": 2, "latencyMs": 1}, {"id": 3, "latencyMs": 1}, {"id": 9, "state": "dead"})";

/// A daemon on a network in which nothing takes long: node 2 works, 9 is dead, and one comes and one goes at once.
class ClientCommands : public testing::Test {
protected:
    ClientCommands() {
        start(usualNodes, R"("joining": [{"afterMs": 100, "latencyMs": 1}], "leaving": [{"node": 3, "afterMs": 100}])");
    }

    void start(std::string const& nodes, std::string const& comings = R"("joining": [], "leaving": [])") {
        daemon_.reset();
        auto const file = directory_.write("network.json", R"({"homeId": "c0ffee01", "retransmitMs": 20,
            "module": {"nvmSize": 16384}, "nodes": [)" + nodes +
                                                               "], " + comings + '}');
        daemon_ = std::make_unique<DaemonProcess>(
            Words{"--network", file, "--listen", "127.0.0.1", "--listen", "unix:" + socket()});
        MessageClient(daemon_->port()).waitForStart();
    }

    /// A network that is quiet: its only node has told what it is.
    void startQuiet() {
        start(R"({"id": 2, "latencyMs": 1})");
        ASSERT_EQ(run({"interview", "2"}), 0);
    }

    std::string socket() const { return directory_.path("socket"); }

    /// The exit code of the client with the words.
    int run(Words const& words) { return finish(clientCommand(daemon_->port(), words)); }

    int finish(Words const& command) {
        Process client(command);
        auto const code = client.wait();
        lines_ = client.restOfOutput();
        errors_ = client.errors();
        return code;
    }

    /// Gives the line to the client's standard input; `$0 "$@"` of the script is the client.
    int pipe(std::string const& script, Words const& words) {
        auto command = clientCommand(daemon_->port(), words);
        command.insert(command.begin(), {"/bin/sh", "-c", script});
        return finish(command);
    }

    std::string path(std::string const& name) const { return directory_.path(name); }

    TemporaryDirectory directory_;
    std::unique_ptr<DaemonProcess> daemon_;
    Words lines_;
    std::string errors_;
};

// ---- any message

TEST_F(ClientCommands, RequestTakesMembersOverTheDefaults) {
    EXPECT_EQ(run({"request", "NodeInformationMsg", R"({"operation_":"get","displayOptions_":"info"})"}), 0);
    EXPECT_THAT(lines_, SizeIs(5));
    EXPECT_THAT(lines_, Contains(StartsWith("9       routingSlave")));
    EXPECT_EQ(errors_, "");
}

TEST_F(ClientCommands, RequestTakesTheFullNameOfAClass) {
    EXPECT_EQ(run({"request", "zorv::SystemStatusEvt"}), 0);
    EXPECT_THAT(lines_, ElementsAre("SystemStatusEvt:", MatchesRegex("result_ +\"success\""),
                                    MatchesRegex("status_ +\"ready\"")));
}

TEST_F(ClientCommands, RequestShowsTheAnswerAsALineOfJsonThatRequestTakes) {
    EXPECT_EQ(run({"--json", "request", "SystemStatusEvt"}), 0);
    ASSERT_THAT(lines_, SizeIs(1));
    auto const answer = readMessage(lines_.front());
    EXPECT_FALSE(answer->correlation().is_nil());
    EXPECT_EQ(run({"request", "SystemStatusEvt", lines_.front()}), 0); // it is an answer, but asks anew
    EXPECT_THAT(lines_, SizeIs(3));
}

TEST_F(ClientCommands, RequestReadsItsMembersFromStandardInput) {
    EXPECT_EQ(pipe(R"("$0" example DaemonStatusMsg | exec "$0" "$@")", {"request", "DaemonStatusMsg", "-"}), 0);
    EXPECT_THAT(lines_, Contains(MatchesRegex("status_ +\"notSecure\"")));
}

TEST_F(ClientCommands, RequestSendsEveryExample) {
    for (auto const& message : describeCatalogue()) {
        if (message.name == "zorv::QuitMsg") { continue; } // it is the last one
        auto const code = pipe("\"$0\" example " + message.name + R"( | exec "$0" "$@")",
                               {"--timeout", "5", "--json", "request", message.name, "-"});
        EXPECT_TRUE(code == 0 || code == refused) << message.name << ' ' << code << errors_;
        for (auto const& line : Words(lines_)) { // what comes back is read again
            auto const file = directory_.write("answer", line + '\n');
            EXPECT_EQ(finish({"/bin/sh", "-c", R"(exec "$0" decode < "$1")", programPath("quillet"), file}), 0)
                << message.name << errors_;
            EXPECT_THAT(lines_, Not(IsEmpty())) << message.name;
        }
    }
    EXPECT_EQ(describeCatalogue().size(), 28U);
    EXPECT_EQ(pipe(R"("$0" example QuitMsg | exec "$0" "$@")", {"request", "QuitMsg", "-"}), 0);
    EXPECT_EQ(daemon_->wait(), 0);
}

TEST_F(ClientCommands, DecodeReadsWhatNodesShowsAsJson) {
    EXPECT_EQ(run({"nodes"}), 0);
    auto const table = lines_;
    EXPECT_EQ(pipe(R"("$0" "$@" | exec "$0" decode)", {"nodes", "--json"}), 0);
    EXPECT_EQ(lines_, table);
}

TEST_F(ClientCommands, RequestTellsWhatIsWrongWithItsMembers) {
    auto const complaint = [this](std::string const& json) {
        EXPECT_EQ(run({"request", "PingMsg", json}), usage);
        EXPECT_THAT(lines_, IsEmpty());
        return errors_;
    };
    EXPECT_EQ(complaint(R"({"latencyMs_":"x"})"), "quillet: latencyMs_: expected unsigned int, got string\n");
    EXPECT_EQ(complaint(R"({"destinatin_":{}})"),
              "quillet: zorv::PingMsg has no member destinatin_; did you mean \"destination_\"?\n");
    EXPECT_EQ(complaint(R"({"__name__":"zorv::VersionMsg"})"), "quillet: the message is no zorv::PingMsg\n");
    EXPECT_THAT(complaint("{"), StartsWith("quillet: malformed text: line 1, column 2: "));
}

TEST_F(ClientCommands, RequestForAnUnknownClassNamesTheNearestOne) {
    EXPECT_EQ(run({"request", "ping"}), usage);
    EXPECT_THAT(errors_, HasSubstr("no message is called ping; did you mean \"PingMsg\"?"));
    EXPECT_EQ(run({"request", "zorv::PingMgs"}), usage);
    EXPECT_THAT(errors_, HasSubstr(R"(no message is called zorv::PingMgs; did you mean "PingMsg"?)"));
}

TEST_F(ClientCommands, RequestShowsProgressAndThenTheAnswer) {
    EXPECT_EQ(run({"request", "AddRemoveNodeMsg", R"({"operation_":"add"})"}), 0);
    EXPECT_EQ(errors_, "quillet: AddRemoveNodeMsg: in progress\n");
    EXPECT_THAT(lines_, Contains(MatchesRegex("Address: +c0ffee01:4")));
}

TEST_F(ClientCommands, RequestOfWhatGetsNoAnswerIsSent) {
    EXPECT_EQ(run({"request", "QuitMsg"}), 0);
    EXPECT_THAT(lines_, IsEmpty());
    EXPECT_EQ(daemon_->wait(), 0);
}

TEST_F(ClientCommands, RefusalIsOneAndIsSaid) {
    EXPECT_EQ(run({"request", "AddRemoveNodeMsg"}), refused);
    EXPECT_EQ(errors_, "quillet: AddRemoveNodeMsg: rejected\n");
    EXPECT_THAT(lines_, IsEmpty());
    EXPECT_EQ(run({"--json", "request", "AddRemoveNodeMsg"}), refused);
    EXPECT_THAT(lines_, ElementsAre(HasSubstr(R"("result_":"rejected")")));
}

// ---- the place of the daemon

TEST_F(ClientCommands, SocketIsTakenFromAnOptionOrTheEnvironment) {
    EXPECT_EQ(finish({programPath("quillet"), "--socket", socket(), "request", "SystemStatusEvt"}), 0);
    EXPECT_EQ(finish({"/usr/bin/env", "QUILLET_SOCKET=" + socket(), programPath("quillet"), "nodes"}), 0);
    EXPECT_EQ(finish({programPath("quillet"), "--socket", path("none"), "nodes"}), 3);
    EXPECT_THAT(errors_, StartsWith("quillet: cannot connect to " + path("none") + ": "));
}

TEST_F(ClientCommands, HostAndPortAreTakenFromTheEnvironment) {
    auto const port = std::to_string(daemon_->port());
    EXPECT_EQ(
        finish({"/usr/bin/env", "QUILLET_HOST=127.0.0.1", "QUILLET_PORT=" + port, programPath("quillet"), "nodes"}), 0);
    EXPECT_EQ(finish({"/usr/bin/env", "QUILLET_PORT=0", programPath("quillet"), "nodes"}), usage);
}

// ---- nodes and the controller

TEST_F(ClientCommands, NodesShowsTheTableThatIsAskedFor) {
    EXPECT_EQ(run({"nodes"}), 0);
    ASSERT_THAT(lines_, SizeIs(5));
    EXPECT_THAT(lines_[0], StartsWith("NodeId  Basic             Generic"));
    EXPECT_EQ(run({"nodes", "--view", "status"}), 0);
    EXPECT_THAT(lines_[0], HasSubstr("Repeater"));
    EXPECT_EQ(run({"nodes", "--view", "stats"}), usage);
    EXPECT_THAT(errors_, StartsWith("quillet: --view: unknown DisplayOption \"stats\"; did you mean \"status\"?\n"));
    EXPECT_EQ(run({"learn", "xyzzy"}), usage);
    EXPECT_THAT(errors_, StartsWith("quillet: MODE: unknown LearnMode \"xyzzy\"; it is one of disabled, classic, "));
}

TEST_F(ClientCommands, NodeShowsOneNode) {
    EXPECT_EQ(run({"node", "2"}), 0);
    EXPECT_THAT(lines_, Contains(MatchesRegex("Address: +c0ffee01:2")));
    EXPECT_THAT(lines_, Not(Contains(HasSubstr("c0ffee01:3"))));
    EXPECT_EQ(run({"node", "77"}), refused);
    EXPECT_EQ(errors_, "quillet: node: the network has no node 77\n");
    EXPECT_EQ(run({"node", "c0ffee02:2"}), refused);
}

TEST_F(ClientCommands, InfoShowsTheController) {
    EXPECT_EQ(run({"info"}), 0);
    EXPECT_THAT(lines_, Contains(MatchesRegex("FW version: +Z-Wave 7\\..*")));
    EXPECT_EQ(run({"info", "--view", "commands"}), 0);
    EXPECT_THAT(lines_, Not(Contains(HasSubstr("FW version"))));
}

TEST_F(ClientCommands, StatusShowsDaemonModuleLinkAndCounters) {
    EXPECT_EQ(run({"status"}), 0);
    for (auto const* const part : {"System:      ready", "Daemon:      notSecure", "Controller:  c0ffee01:1",
                                   "Module:      bridgeController", "Link:        frameNormal"}) {
        EXPECT_THAT(lines_, Contains(part));
    }
    EXPECT_THAT(lines_, Contains(StartsWith("Client ")));
    EXPECT_THAT(lines_, Contains(StartsWith("127.0.0.1:")));
    EXPECT_THAT(lines_, Contains(MatchesRegex("Serial frames sent +[0-9]+")));
    auto const withTitles = lines_.size();
    EXPECT_EQ(run({"--no-header", "status"}), 0);
    EXPECT_THAT(lines_, SizeIs(withTitles - 2));
    EXPECT_EQ(run({"--json", "status"}), 0);
    EXPECT_THAT(lines_, SizeIs(5));
}

TEST_F(ClientCommands, InterviewShowsNoOtherNodes) {
    start(R"({"id": 2, "latencyMs": 1}, {"id": 3, "latencyMs": 150})"); // whose interview comes between
    EXPECT_EQ(run({"--no-header", "interview", "2"}), 0);
    EXPECT_THAT(lines_, Not(IsEmpty()));
    EXPECT_THAT(lines_, Each(HasSubstr(" c0ffee01:2 ")));
}

TEST_F(ClientCommands, InterviewShowsWhatTheNodeTold) {
    EXPECT_EQ(run({"interview", "2"}), 0);
    ASSERT_THAT(lines_, SizeIs(testing::Gt(3U)));
    EXPECT_THAT(lines_[0], MatchesRegex("Time +operation +device"));
    EXPECT_THAT(lines_[1], MatchesRegex(".*Z  [a-zA-Z]+ +c0ffee01:2 configuring"));
    EXPECT_THAT(lines_.back(), MatchesRegex(".*Z  finish +c0ffee01:2 ready"));
    EXPECT_EQ(std::count_if(lines_.begin(), lines_.end(),
                            [](auto const& line) { return line.find(" finish ") != std::string::npos; }),
              1);
    EXPECT_EQ(run({"interview", "77"}), refused);
    EXPECT_EQ(errors_, "quillet: interview: nodeNotFound\n");
}

TEST_F(ClientCommands, NeighborsAndNifAndUpdateAreAnswered) {
    EXPECT_EQ(run({"neighbors", "2"}), 0);
    EXPECT_THAT(lines_, Contains(MatchesRegex("Request status: +done")));
    EXPECT_EQ(run({"nif", "2"}), 0);
    EXPECT_EQ(run({"nif", "300"}), usage);
    EXPECT_THAT(errors_, StartsWith("quillet: NODE: expected a whole number from 0 to 255, got 300\n"));
    EXPECT_EQ(run({"update"}), refused); // the controller is itself the one that would be asked
}

TEST_F(ClientCommands, SendTakesNodesAndBytes) {
    EXPECT_EQ(run({"--json", "send", "2,3", "0x25", "01", "ff"}), 0);
    auto const sent = boost::dynamic_pointer_cast<SendCommandMsg>(readMessage(lines_.at(0)));
    ASSERT_TRUE(sent);
    EXPECT_EQ(sent->command()->bytes(), (std::vector<unsigned char>{0x25, 0x01, 0xFF}));
    EXPECT_EQ(sent->destinations().size(), 2U);
    EXPECT_EQ(run({"send", "77", "25", "02"}), refused);
    EXPECT_EQ(run({"send", "2", "25", "100"}), usage);
    EXPECT_THAT(errors_, StartsWith("quillet: BYTES: not a byte in hex: \"100\"\n"));
    EXPECT_EQ(run({"send", "2"}), usage);
}

// ---- modes

TEST_F(ClientCommands, IncludeShowsTheNodeThatHasCome) {
    EXPECT_EQ(run({"include"}), 0);
    EXPECT_THAT(lines_, Contains(MatchesRegex("Address: +c0ffee01:4")));
}

TEST_F(ClientCommands, ExcludeShowsTheNodeThatHasGone) {
    EXPECT_EQ(run({"exclude"}), 0);
    EXPECT_THAT(lines_, Contains(MatchesRegex("Address: +c0ffee01:3")));
}

TEST_F(ClientCommands, ModeEndsAtTheTimeThatIsGiven) {
    start(usualNodes);
    EXPECT_EQ(run({"include", "--timeout", "1"}), timedOut);
    EXPECT_THAT(errors_, HasSubstr("quillet: include: timeout\n"));
    EXPECT_EQ(run({"learn", "classic", "--timeout", "0.2"}), timedOut);
    EXPECT_EQ(run({"learn", "clasic"}), usage);
}

TEST_F(ClientCommands, InterruptionEndsTheModeInOrder) {
    start(usualNodes);
    Process client(clientCommand(daemon_->port(), {"include"}));
    client.waitForError("in progress");
    client.signal(SIGINT);
    EXPECT_EQ(client.wait(), interrupted);
    EXPECT_THAT(client.errors(), HasSubstr("interrupted; the mode is being ended"));
    EXPECT_THAT(client.errors(), HasSubstr("quillet: include: the mode has ended: failure\n"));
    EXPECT_EQ(run({"include", "--timeout", "1"}), timedOut); // so that another one is not rejected
}

TEST_F(ClientCommands, SecondInterruptionLeavesAtOnce) {
    start(usualNodes);
    Process client(clientCommand(daemon_->port(), {"include"}));
    client.waitForError("in progress");
    daemon_->signal(SIGSTOP);
    client.signal(SIGINT);
    client.waitForError("the mode is being ended");
    client.signal(SIGINT);
    EXPECT_EQ(client.wait(), interrupted);
    daemon_->signal(SIGCONT);
    EXPECT_THAT(client.errors(), Not(HasSubstr("has ended")));
}

// ---- what cannot be undone

TEST_F(ClientCommands, DestructionIsRefusedWithoutATerminal) {
    for (auto const& words :
         std::vector<Words>{{"reset"}, {"nvm", "clear"}, {"failed", "9", "remove"}, {"firmware", "us"}}) {
        EXPECT_EQ(run(words), usage) << words.front();
        EXPECT_THAT(errors_, HasSubstr("; say --yes where nobody can be asked\n"));
    }
    EXPECT_EQ(run({"node", "9"}), 0); // nothing was done
}

TEST_F(ClientCommands, DestructionIsAskedForOnATerminal) {
    auto const answer = [this](std::string const& text) {
        return finish({"/bin/sh", "-c", R"(printf '%s\n' "$2" | script -qec "$0 --port $1 reset" /dev/null)",
                       programPath("quillet"), std::to_string(daemon_->port()), text});
    };
    EXPECT_EQ(answer("n"), refused);
    EXPECT_THAT(lines_, Contains(HasSubstr("nothing was done")));
    EXPECT_EQ(run({"node", "2"}), 0);
    EXPECT_EQ(answer("y"), 0);
    EXPECT_EQ(run({"node", "2"}), refused);
}

TEST_F(ClientCommands, ResetEmptiesTheNetwork) {
    EXPECT_EQ(run({"reset", "--yes"}), 0);
    EXPECT_EQ(run({"nodes"}), 0);
    EXPECT_THAT(lines_, SizeIs(2));
}

TEST_F(ClientCommands, FailedNodeIsRemoved) {
    EXPECT_EQ(run({"failed", "2", "remove", "--yes"}), refused); // it works
    EXPECT_EQ(run({"failed", "9", "remove", "--yes"}), 0);
    EXPECT_EQ(run({"node", "9"}), refused);
    EXPECT_EQ(run({"failed", "2", "delete", "--yes"}), usage);
}

// ---- the memory

TEST_F(ClientCommands, SavedMemoryIsAGoodBackupAndIsRestored) {
    auto const file = path("backup.json");
    EXPECT_EQ(run({"nvm", "save", file}), 0);
    EXPECT_THAT(errors_, HasSubstr("quillet: nvm save: 10 %\nquillet: nvm save: 20 %\n"));
    EXPECT_EQ(run({"nvm", "check", file}), 0);
    EXPECT_EQ(errors_, "");
    EXPECT_EQ(run({"exclude"}), 0);
    EXPECT_EQ(run({"node", "3"}), refused);
    EXPECT_EQ(run({"nvm", "restore", file}), usage);
    EXPECT_EQ(run({"nvm", "restore", file, "--yes"}), 0);
    EXPECT_THAT(errors_, HasSubstr("quillet: nvm restore: 100 %\n"));
    EXPECT_EQ(run({"node", "3"}), 0);
}

TEST_F(ClientCommands, SaveReplacesNoFileUnlessForced) {
    auto const file = directory_.write("backup.json", "mine");
    EXPECT_EQ(run({"nvm", "save", file}), usage);
    EXPECT_EQ(readFile(file), "mine");
    EXPECT_EQ(run({"nvm", "save", file, "--force"}), 0);
    EXPECT_EQ(run({"nvm", "check", file}), 0);
    std::size_t count = 0;
    for (auto const& entry : std::filesystem::directory_iterator(directory_.path())) {
        count += entry.path().filename().string().rfind("backup.json", 0) == 0 ? 1U : 0U;
    }
    EXPECT_EQ(count, 1U); // the temporary file is gone
}

TEST_F(ClientCommands, InterruptedSaveLeavesNothing) {
    auto const file = path("backup.json");
    daemon_->signal(SIGSTOP);
    Process save(clientCommand(daemon_->port(), {"-v", "-v", "nvm", "save", file}));
    save.waitForError("zorv::ManageNvmMsg"); // the log of what is sent
    save.signal(SIGINT);
    EXPECT_EQ(save.wait(), interrupted);
    EXPECT_THAT(save.errors(), HasSubstr("quillet: nvm save: interrupted; the daemon ends it, nothing is written\n"));
    daemon_->signal(SIGCONT);
    for (auto const& entry : std::filesystem::directory_iterator(directory_.path())) {
        EXPECT_NE(entry.path().filename().string().rfind("backup.json", 0), 0U) << entry.path();
    }
}

TEST_F(ClientCommands, SaveToAFolderThatIsNotThereIsSix) {
    EXPECT_EQ(run({"nvm", "save", path("none/backup.json")}), 6);
    EXPECT_THAT(errors_, StartsWith("quillet: cannot write "));
}

TEST_F(ClientCommands, DamagedBackupIsNotRestored) {
    auto const file = path("backup.json");
    ASSERT_EQ(run({"nvm", "save", file}), 0);
    auto text = readFile(file);
    auto& character = text.at(text.find(R"("contents_":")") + 20);
    character = character == 'A' ? 'B' : 'A';
    directory_.write("backup.json", text);
    EXPECT_EQ(run({"nvm", "check", file}), refused);
    EXPECT_EQ(run({"nvm", "restore", file, "--yes"}), refused);
    EXPECT_THAT(errors_, HasSubstr("a blob is damaged"));
    EXPECT_EQ(run({"nvm", "restore", path("none"), "--yes"}), refused);
    EXPECT_THAT(errors_, HasSubstr("none: fileNotFound\n"));
}

TEST_F(ClientCommands, MemoryIsValidatedAndCleared) {
    EXPECT_EQ(run({"nvm", "validate"}), 0);
    EXPECT_EQ(run({"nvm", "clear", "--yes"}), 0);
    EXPECT_EQ(run({"node", "2"}), refused);
}

// ---- live views

TEST_F(ClientCommands, WatchShowsTheReportOfANode) {
    startQuiet();
    Process watch(clientCommand(daemon_->port(), {"watch", "CommandClassMsg", "--count", "1"}));
    watch.waitForError("quillet: watch: listening\n");
    EXPECT_EQ(run({"send", "2", "25", "01", "ff"}), 0);
    EXPECT_EQ(run({"send", "2", "25", "02"}), 0);
    EXPECT_EQ(watch.wait(), 0);
    EXPECT_THAT(
        watch.restOfOutput(),
        ElementsAre(
            MatchesRegex("Time +Event +Members"),
            MatchesRegex(".*Z  CommandClassMsg +sourceAddr=c0ffee01:2 rxStatus=none.singlecast command=25 03 ff")));
}

TEST_F(ClientCommands, WatchRunsUntilItIsInterrupted) {
    Process watch(clientCommand(daemon_->port(), {"--json", "watch", "SocketStatusMsg"}));
    watch.waitForError("quillet: watch: listening\n");
    EXPECT_EQ(run({"request", "SystemStatusEvt"}), 0);
    EXPECT_THAT(watch.readLine(), HasSubstr(R"("status_":"connect")"));
    watch.signal(SIGINT);
    EXPECT_EQ(watch.wait(), interrupted);
}

TEST_F(ClientCommands, WatchEndsWithThreeWhenTheDaemonDoes) {
    Process watch(clientCommand(daemon_->port(), {"watch", "SystemStatusEvt"}));
    watch.waitForError("quillet: watch: listening\n");
    daemon_->signal(SIGTERM);
    EXPECT_EQ(watch.wait(), 3);
    EXPECT_THAT(watch.errors(), HasSubstr("quillet: lost the connection to the daemon: "));
}

TEST_F(ClientCommands, TraceShowsTheFramesOfThePing) {
    startQuiet();
    Process trace(clientCommand(daemon_->port(), {"trace", "--count", "3"}));
    trace.waitForError("quillet: trace: listening\n");
    EXPECT_EQ(run({"ping", "2", "--count", "1"}), 0);
    EXPECT_EQ(trace.wait(), 0);
    EXPECT_THAT(trace.restOfOutput(),
                ElementsAre(MatchesRegex("Time +Sender +Function +Form +Members"),
                            MatchesRegex(".*Z  host    SendDataBridge +request   .*node=2 .*"),
                            MatchesRegex(".*Z  module  SendDataBridge +response  .*"),
                            MatchesRegex(".*Z  module  SendDataBridge +callback  callbackId=.*")));
}

TEST_F(ClientCommands, ObserveShowsWhatOtherClientsSend) {
    startQuiet();
    Process observe(clientCommand(daemon_->port(), {"observe", "received", "--count", "1"}));
    observe.waitForError("quillet: observe: listening\n");
    EXPECT_EQ(run({"ping", "2", "--count", "1"}), 0);
    EXPECT_EQ(observe.wait(), 0);
    EXPECT_THAT(observe.restOfOutput(),
                ElementsAre(MatchesRegex("Time +Direction +Message +Members"),
                            MatchesRegex(".*Z  received   PingMsg +destination=00000000:2 latencyMs=0")));
}

TEST_F(ClientCommands, NodesAreFollowedAsTheyComeAndGo) {
    Process nodes(clientCommand(daemon_->port(), {"nodes", "--follow", "--no-header"}));
    nodes.waitForError("quillet: nodes: listening\n");
    EXPECT_EQ(run({"include"}), 0);
    EXPECT_EQ(run({"exclude"}), 0);
    std::string line;
    while (line.find("4 ") != 0) { line = nodes.readLine(); }
    EXPECT_THAT(line, MatchesRegex("4 +routingSlave +switchBinary .*"));
    while (line.find("3  ") != 0 || line.find("has left the network") == std::string::npos) { line = nodes.readLine(); }
    nodes.signal(SIGINT);
    EXPECT_EQ(nodes.wait(), interrupted);
}

TEST_F(ClientCommands, FollowedNodesAreLinesOfJsonThatDecodeReads) {
    startQuiet();
    Process nodes(clientCommand(daemon_->port(), {"--json", "nodes", "--follow", "--count", "1"}));
    nodes.waitForError("quillet: nodes: listening\n");
    EXPECT_EQ(run({"interview", "2"}), 0);
    EXPECT_EQ(nodes.wait(), 0);
    auto const lines = nodes.restOfOutput();
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_THAT(lines[1], HasSubstr(R"("operation_":"update")"));
    EXPECT_EQ(readMessage(lines[1])->name(), "NodeInformationMsg");
}

TEST_F(ClientCommands, UnknownEventIsRefused) {
    EXPECT_EQ(run({"watch", "ComandClassMsg"}), usage);
    EXPECT_THAT(errors_,
                StartsWith("quillet: EVENT: unknown event \"ComandClassMsg\"; did you mean \"CommandClassMsg\"?\n"));
    EXPECT_EQ(run({"watch", "PingMsg"}), refused); // a message, but no event
    EXPECT_EQ(errors_, "quillet: watch: rejected\n");
}

TEST_F(ClientCommands, QuitWaitsForTheEndOfTheDaemon) {
    EXPECT_EQ(run({"quit"}), 0);
    EXPECT_EQ(daemon_->wait(), 0);
}

// ---- the demonstration

TEST(Demonstration, EndsEachStepAsItShould) {
    Process demo({zorv::sourcePath("scripts/demo"), zorv::programPath("..")});
    EXPECT_EQ(demo.wait(), 0) << demo.errors();
    EXPECT_THAT(demo.restOfOutput(), Contains("All steps ended as they should."));
}

} // namespace
