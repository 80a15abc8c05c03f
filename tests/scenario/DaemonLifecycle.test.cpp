// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/LineClient.h"
#include "tests/scenario/Process.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/readFile.h"
#include "tests/support/systemText.h"
#include "tests/testPaths.h"

#include <boost/filesystem/directory.hpp>
#include <boost/filesystem/path.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <regex>
#include <string>
#include <vector>

namespace {

using namespace scenario;

TEST(DaemonLifecycle, PortZeroMeansAFreePortThatIsAnnounced) {
    DaemonProcess const daemon;
    EXPECT_NE(daemon.port(), 0);
    OpenClient client(daemon.port());
    ASSERT_TRUE(client.sendLine(pingLine(1)));
    EXPECT_EQ(client.receive()->name(), "PingMsg");
}

TEST(DaemonLifecycle, SigtermAndSigintEndTheDaemonInOrderAndFreeThePort) {
    for (int const signal : {SIGTERM, SIGINT}) {
        DaemonProcess daemon;
        OpenClient client(daemon.port());
        ASSERT_TRUE(client.sendLine(pingLine(1)));
        EXPECT_EQ(client.receive()->name(), "PingMsg");
        ASSERT_TRUE(client.sendLine(pingLine(9))); // still under way when the daemon ends
        daemon.signal(signal);
        EXPECT_EQ(daemon.wait(), 0);
        EXPECT_TRUE(daemon.restOfOutput().empty());
        EXPECT_EQ(daemon.errors(), "");
        EXPECT_EQ(client.receive()->name(), "PingMsg"); // which has failed
        EXPECT_TRUE(client.endsAfter(0));
        Process successor({zorv::programPath("zwaved"), "--port", std::to_string(daemon.port())});
        EXPECT_EQ(successor.readLine(), "listening on 127.0.0.1:" + std::to_string(daemon.port()));
    }
}

TEST(DaemonLifecycle, PortInUseIsAnError) {
    DaemonProcess const first;
    auto const port = std::to_string(first.port());
    Process second({zorv::programPath("zwaved"), "--port", port});
    EXPECT_EQ(second.wait(), 1);
    EXPECT_EQ(second.errors(),
              "zwaved: cannot listen on 127.0.0.1:" + port + ": " + zorv::systemText(EADDRINUSE) + "\n");
    EXPECT_TRUE(second.restOfOutput().empty());
}

TEST(DaemonLifecycle, WrongUsageExitsWithTwo) {
    std::vector<std::vector<std::string>> const wrong{{"--port", "65536"},        {"--port", "-1"},
                                                      {"--listen", "everywhere"}, {"--max-line", "x"},
                                                      {"--log-level", "loud"},    {"surplus"}};
    for (auto const& arguments : wrong) {
        std::vector<std::string> command{zorv::programPath("zwaved")};
        command.insert(command.end(), arguments.begin(), arguments.end());
        Process daemon(command);
        EXPECT_EQ(daemon.wait(), 2) << arguments.front();
        EXPECT_TRUE(daemon.restOfOutput().empty());
    }
}

TEST(DaemonLifecycle, LineLimitCanBeChosen) {
    DaemonProcess const daemon({"--max-line", "2000"});
    OpenClient client(daemon.port());
    ASSERT_TRUE(client.sendLine(pingLine(1)));
    EXPECT_EQ(client.receive()->name(), "PingMsg");
    ASSERT_TRUE(client.send(std::string(2000, ' ') + "\n"));
    EXPECT_EQ(client.receive()->name(), "Confirmable");
    ASSERT_TRUE(client.send(std::string(2001, ' ') + "\n"));
    EXPECT_TRUE(client.endsAfter(1));
}

TEST(DaemonLifecycle, LogLevelDecidesWhichLinesAreShown) {
    for (std::string const level : {"info", "error"}) {
        DaemonProcess daemon({"--log-level", level});
        OpenClient client(daemon.port());
        ASSERT_TRUE(client.sendLine("rubbish"));
        client.receiveLine();
        daemon.signal(SIGTERM);
        EXPECT_EQ(daemon.wait(), 0);
        EXPECT_EQ(daemon.errors().find(" connected\n") != std::string::npos, level == "info");
        EXPECT_EQ(daemon.errors().find("WARN MessageBus: bad line") != std::string::npos, level == "info");
    }
}

TEST(DaemonLifecycle, WrongUsageIsToldUnderTheProgramsNameAndWithTheRange) {
    auto const errors = [](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), zorv::programPath("zwaved"));
        Process daemon(arguments);
        EXPECT_EQ(daemon.wait(), 2);
        auto const text = daemon.errors();
        return text.substr(0, text.find('\n'));
    };
    std::string const expected = ": expected a whole number from ";
    EXPECT_EQ(errors({"--port", "65536"}), "zwaved: --port" + expected + "0 to 65535, got 65536");
    EXPECT_EQ(errors({"--port", "1x"}), "zwaved: --port" + expected + "0 to 65535, got 1x");
    EXPECT_EQ(errors({"--max-line", "255"}), "zwaved: --max-line" + expected + "256 to 1073741824, got 255");
    EXPECT_EQ(errors({"--max-line", "-1"}), "zwaved: --max-line" + expected + "256 to 1073741824, got -1");
    EXPECT_EQ(errors({"--max-backlog", "0"}), "zwaved: --max-backlog" + expected + "1024 to 1073741824, got 0");
    EXPECT_EQ(errors({"--max-memory", "99999999999999999999"}),
              "zwaved: --max-memory" + expected + "1048576 to 1073741824, got 99999999999999999999");
    EXPECT_EQ(errors({"--max-clients", "0"}), "zwaved: --max-clients" + expected + "1 to 65536, got 0");
    EXPECT_EQ(errors({"serve"}), "zwaved: unexpected argument \"serve\"");
    EXPECT_EQ(errors({"--prot", "1"}), "zwaved: unknown option \"--prot\"; did you mean \"--port\"?");
}

#ifndef __SANITIZE_ADDRESS__
#ifndef __SANITIZE_THREAD__ // reserves address space by the terabyte, as does that of addresses
TEST(DaemonLifecycle, MemoryForAllClientsIsASixteenthOfWhatTheDaemonMayUse) {
    auto const memoryUnder = [](std::string const& kibibytes) {
        Process daemon(
            {"/bin/sh", "-c", "ulimit -v " + kibibytes + "; exec \"$0\" --help", zorv::programPath("zwaved")});
        EXPECT_EQ(daemon.wait(), 0);
        for (auto const& line : daemon.restOfOutput()) {
            std::smatch match;
            if (std::regex_search(line, match, std::regex("--max-memory N[^0-9]*([0-9]+)"))) { return match.str(1); }
        }
        return std::string("not told");
    };
    EXPECT_EQ(memoryUnder("160000"), "10240000");
    EXPECT_EQ(memoryUnder("200000"), "12800000");
}
#endif
#endif

TEST(DaemonLifecycle, DebugShowsTheTrafficAndTheTimeInUtc) {
    DaemonProcess daemon({"--log-level", "debug"});
    OpenClient client(daemon.port());
    ASSERT_TRUE(client.sendLine(pingLine(1)));
    client.receiveLine();
    daemon.signal(SIGTERM);
    EXPECT_EQ(daemon.wait(), 0);
    auto const log = daemon.errors();
    std::string const time = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}Z ";
    std::string const line = time + "DEBUG MessageBus: 127\\.0\\.0\\.1:[0-9]+ ";
    EXPECT_TRUE(std::regex_search(log, std::regex(line + "-> .*zorv::PingMsg"))) << log;
    EXPECT_TRUE(std::regex_search(log, std::regex(line + "<- .*zorv::PingMsg"))) << log;
}

class NetworkFile : public testing::Test {
protected:
    void expectComplaint(std::string const& text, std::string const& complaint) {
        auto const file = directory_.write("net.json", text);
        Process daemon({zorv::programPath("zwaved"), "--port", "0", "--network", file});
        EXPECT_EQ(daemon.wait(), 1);
        EXPECT_EQ(daemon.errors(), "zwaved: " + file + complaint + "\n");
        EXPECT_TRUE(daemon.restOfOutput().empty());
    }

    zorv::TemporaryDirectory directory_;
};

TEST_F(NetworkFile, OfTheExamplesIsRead) {
    int files = 0;
    for (auto const& entry : boost::filesystem::directory_iterator(zorv::sourcePath("examples/networks"))) {
        DaemonProcess const daemon({"--network", entry.path().string()});
        OpenClient const client(daemon.port());
        ++files;
    }
    EXPECT_GT(files, 0);
}

TEST_F(NetworkFile, ThatDoesNotExistIsNamed) {
    Process daemon({zorv::programPath("zwaved"), "--network", directory_.path("none.json")});
    EXPECT_EQ(daemon.wait(), 1);
    EXPECT_EQ(daemon.errors(),
              "zwaved: " + directory_.path("none.json") + ": cannot be read: " + zorv::systemText(ENOENT) + "\n");
}

TEST_F(NetworkFile, ThatIsNotJsonIsRefusedInOneLineThatNamesTheFileAndThePlace) {
    auto const file = directory_.write("net.json", "{\n  \"homeId\" \"c0ffee01\"\n}");
    Process daemon({zorv::programPath("zwaved"), "--port", "0", "--network", file});
    EXPECT_EQ(daemon.wait(), 1);
    // The rest is the parser's own text.
    EXPECT_THAT(daemon.errors(), testing::StartsWith("zwaved: " + file + ": "));
    EXPECT_THAT(daemon.errors(), testing::ContainsRegex("2[^0-9]+12[^0-9]"));
    EXPECT_EQ(daemon.errors().find('\n'), daemon.errors().size() - 1);
}

TEST_F(NetworkFile, ThatIsAnArrayIsRefused) { expectComplaint("[]", ":1: expected an object"); }

TEST_F(NetworkFile, WithoutAHomeIdIsRefused) { expectComplaint("{\"nodes\": []}", ":1: homeId: is missing"); }

TEST_F(NetworkFile, WithABadHomeIdIsRefused) {
    for (std::string const home : {"12", "\"c0ffee\"", "\"C0FFEE01\"", "\"00000000\"", "\"c0ffee012\"", "null"}) {
        expectComplaint("{\n\"homeId\": " + home + ", \"nodes\": []}",
                        ":2: homeId: expected eight lower-case hex digits, not all 0");
    }
}

TEST_F(NetworkFile, WithoutNodesIsRefused) {
    expectComplaint("{\"homeId\": \"c0ffee01\"}", ":1: nodes: is missing");
    expectComplaint("{\"homeId\": \"c0ffee01\",\n\"nodes\": {}}", ":2: nodes: expected an array");
}

TEST_F(NetworkFile, WithAnUnknownMemberIsRefused) {
    expectComplaint("{\"homeId\": \"c0ffee01\",\n\"nodes\": [], \"sead\": 1}", ":2: sead: is not known here");
    expectComplaint("{\"homeId\": \"c0ffee01\",\n\"nodes\": [\n{\"id\": 5, \"lag\": 1}]}",
                    ":3: nodes[0].lag: is not known here");
}

TEST_F(NetworkFile, WithANumberOutOfRangeIsRefused) {
    auto const expectNodeComplaint = [this](std::string const& node, std::string const& complaint) {
        expectComplaint("{\"homeId\": \"c0ffee01\", \"nodes\": [\n{\"id\": 4},\n" + node + "]}",
                        ":3: nodes[1]" + complaint);
    };
    expectNodeComplaint("{\"id\": 0}", ".id: expected a whole number from 1 to 232");
    expectNodeComplaint("{\"id\": 233}", ".id: expected a whole number from 1 to 232");
    expectNodeComplaint("{\"id\": 5.5}", ".id: expected a whole number from 1 to 232");
    expectNodeComplaint("{\"latencyMs\": 5}", ".id: is missing");
    expectNodeComplaint("{\"id\": 5, \"latencyMs\": 60001}", ".latencyMs: expected a whole number from 0 to 60000");
    expectNodeComplaint("{\"id\": 5, \"latencyMs\": 9, \"jitterMs\": 10}",
                        ".jitterMs: expected a whole number from 0 to 9");
    expectNodeComplaint("{\"id\": 5, \"loss\": 1.01}", ".loss: expected a number from 0 to 1");
    expectNodeComplaint("{\"id\": 5, \"loss\": \"1\"}", ".loss: expected a number from 0 to 1");
    expectNodeComplaint("{\"id\": 5, \"state\": \"asleep\"}", ".state: expected \"awake\", \"sleeping\" or \"dead\"");
    expectNodeComplaint("5", ": expected an object");
}

TEST_F(NetworkFile, WithTheSameNodeTwiceIsRefused) {
    expectComplaint("{\"homeId\": \"c0ffee01\", \"nodes\": [{\"id\": 4},\n{\"id\": 4}]}",
                    ":2: nodes[1].id: is the id of another node or of the controller");
    expectComplaint("{\"homeId\": \"c0ffee01\", \"controller\": 7, \"nodes\": [\n{\"id\": 7}]}",
                    ":2: nodes[0].id: is the id of another node or of the controller");
}

} // namespace
