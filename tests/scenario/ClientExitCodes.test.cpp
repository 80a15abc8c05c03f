// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/EventLoop.h"
#include "platform/libio/TcpListener.h"
#include "tests/scenario/LineClient.h"
#include "tests/scenario/Process.h"
#include "tests/support/systemText.h"
#include "tests/support/wire.h"
#include "tests/testPaths.h"
#include "zwave/libquillet/PingMsg.h"

#include <boost/asio/ip/tcp.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <list>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using testing::ElementsAre;
using testing::HasSubstr;

/// A daemon that sends its version, and answers every line but the first of a client as a test wants.
class FakeDaemon {
public:
    using Answer = std::function<void(TcpConnection& connection, std::string const& line)>;

    explicit FakeDaemon(Answer answer, std::string version = versionLine())
        : answer_(std::move(answer)),
          version_(std::move(version)),
          listener_(loop_, {boost::asio::ip::address_v4::loopback(), 0}, TcpLimits(),
                    [this](TcpConnection accepted) {
                        auto& connection = connections_.emplace_back(std::move(accepted));
                        TcpConnection::Handlers handlers;
                        handlers.line = [this, &connection, opened = false](std::string const& line) mutable {
                            if (std::exchange(opened, true)) { answer_(connection, line); }
                        };
                        connection.start(std::move(handlers));
                        if (!version_.empty()) { connection.send(version_); }
                    }),
          port_(listener_.local().port()),
          thread_([this] { loop_.run(); }) {}

    ~FakeDaemon() {
        loop_.stop();
        thread_.join();
    }

    FakeDaemon(FakeDaemon const&) = delete;
    FakeDaemon& operator=(FakeDaemon const&) = delete;

    unsigned short port() const noexcept { return port_; }

private:
    Answer answer_;
    std::string version_;
    EventLoop loop_;
    std::list<TcpConnection> connections_;
    TcpListener listener_;
    unsigned short port_;
    std::thread thread_;
};

/// The daemon's answer to the ping in a line.
std::string answerTo(std::string const& line, ZResult::Enum result) {
    return toText(*PingMsg::create(readBack<PingMsg>(line), result, 0));
}

/// A bare Confirmable that answers the request in a line.
std::string confirmationOf(std::string const& line, ZResult::Enum result) {
    Confirmable confirmation(result);
    confirmation.setResponse(*readBack<PingMsg>(line));
    return toText(confirmation);
}

int exitCode(unsigned short port, std::vector<std::string> const& arguments) {
    return Process(clientCommand(port, arguments)).wait();
}

TEST(ClientExitCodes, SuccessIsZero) {
    DaemonProcess const daemon;
    EXPECT_EQ(exitCode(daemon.port(), {"ping", "5", "--count", "1"}), 0);
    EXPECT_EQ(exitCode(daemon.port(), {"ping", "c0ffee01:5", "--count", "1"}), 0);
}

TEST(ClientExitCodes, HelpAndVersionAreZero) {
    EXPECT_EQ(exitCode(1, {"--help"}), 0);
    EXPECT_EQ(exitCode(1, {"ping", "--help"}), 0);
    EXPECT_EQ(exitCode(1, {"help"}), 0);
    EXPECT_EQ(exitCode(1, {"help", "nvm", "save"}), 0);
    EXPECT_EQ(exitCode(1, {"help", "pong"}), 2);
    Process version({programPath("quillet"), "--version"});
    EXPECT_EQ(version.readLine(), "quillet 0.1.0");
    EXPECT_EQ(version.wait(), 0);
}

TEST(ClientExitCodes, RefusalByTheDaemonIsOne) {
    DaemonProcess const daemon;
    EXPECT_EQ(exitCode(daemon.port(), {"ping", "99", "--count", "1"}), 1);
    EXPECT_EQ(exitCode(daemon.port(), {"ping", "8", "--count", "1"}), 1);
    EXPECT_EQ(exitCode(daemon.port(), {"ping", "9", "--count", "1"}), 1);
    EXPECT_EQ(exitCode(daemon.port(), {"ping", "deadbeef:5", "--count", "1"}), 1);
}

TEST(ClientExitCodes, RequestThatTheDaemonDoesNotKnowIsOne) {
    FakeDaemon const daemon([](TcpConnection& connection, std::string const& line) {
        connection.send(confirmationOf(line, ZResult::rejected));
    });
    Process client(clientCommand(daemon.port(), {"ping", "5", "--count", "1"}));
    EXPECT_EQ(client.wait(), 1);
    EXPECT_EQ(client.errors(), "quillet: the daemon did not understand the request: rejected\n");
    EXPECT_TRUE(client.restOfOutput().empty());
}

TEST(ClientExitCodes, WrongUsageIsTwo) {
    std::vector<std::vector<std::string>> const wrong{{},
                                                      {"ping"},
                                                      {"pong", "5"},
                                                      {"ping", "0"},
                                                      {"ping", "233"},
                                                      {"ping", "five"},
                                                      {"ping", "5", "6"},
                                                      {"ping", "c0ffee:5"},
                                                      {"ping", "c0ffeex1:5"},
                                                      {"ping", "5", "--count", "0"},
                                                      {"ping", "5", "--count", "-1"},
                                                      {"ping", "5", "--count", "1.5"},
                                                      {"ping", "5", "--interval", "-0.1"},
                                                      {"ping", "5", "--interval", "nan"},
                                                      {"ping", "5", "--timeout", "0"},
                                                      {"ping", "5", "--timeout", "soon"},
                                                      {"ping", "5", "--port", "0"},
                                                      {"ping", "5", "--port", "65536"}};
    for (auto const& arguments : wrong) {
        Process client(clientCommand(1, arguments));
        EXPECT_EQ(client.wait(), 2) << (arguments.empty() ? "" : arguments.back());
        EXPECT_NE(client.errors(), "");
        EXPECT_TRUE(client.restOfOutput().empty());
    }
}

TEST(ClientExitCodes, WrongUsageIsToldUnderTheProgramsName) {
    auto const errors = [](std::vector<std::string> const& arguments) {
        Process client(clientCommand(1, arguments));
        EXPECT_EQ(client.wait(), 2);
        auto const text = client.errors();
        return text.substr(0, text.find('\n'));
    };
    EXPECT_EQ(errors({"pong", "5"}), "quillet: unknown command \"pong\"; did you mean \"ping\"?");
    EXPECT_EQ(errors({"xyzzy"}), "quillet: unknown command \"xyzzy\"");
    EXPECT_EQ(errors({"nvm", "chekc"}), "quillet: unknown command \"chekc\"; did you mean \"check\"?");
    EXPECT_EQ(errors({"ping", "5", "--cuont=4"}), "quillet: unknown option \"--cuont\"; did you mean \"--count\"?");
    EXPECT_EQ(errors({"ping", "5", "--port", "0"}), "quillet: --port: expected a whole number from 1 to 65535, got 0");
    EXPECT_EQ(errors({"ping", "5", "6"}), "quillet: unexpected argument \"6\"");
}

TEST(ClientExitCodes, NoDaemonIsThree) {
    unsigned short port = 0;
    { port = DaemonProcess().port(); }
    Process client(clientCommand(port, {"ping", "5", "--count", "1"}));
    EXPECT_EQ(client.wait(), 3);
    EXPECT_EQ(client.errors(), "quillet: cannot connect to 127.0.0.1 port " + std::to_string(port) + ": " +
                                   systemText(ECONNREFUSED) + "\n");
}

TEST(ClientExitCodes, LostConnectionIsThree) {
    FakeDaemon const daemon([](TcpConnection& connection, std::string const&) { connection.close(); });
    EXPECT_EQ(exitCode(daemon.port(), {"ping", "5", "--count", "1"}), 3);
}

TEST(ClientExitCodes, NoAnswerInTimeIsFour) {
    FakeDaemon const daemon([](TcpConnection&, std::string const&) {});
    Process client(clientCommand(daemon.port(), {"--timeout", "0.1", "--json", "ping", "5", "--count", "1"}));
    EXPECT_THAT(client.readLine(), HasSubstr(R"("result_":"timeout")"));
    EXPECT_EQ(client.wait(), 4);
}

TEST(ClientExitCodes, RefusalWithinASeriesOutranksATimeout) {
    // The refusal is neither the first nor the last outcome, so a client that reports one of these fails the test.
    FakeDaemon const daemon([pings = 0](TcpConnection& connection, std::string const& line) mutable {
        if (++pings == 2) { connection.send(answerTo(line, ZResult::nodeNotReached)); }
    });
    Process client(
        clientCommand(daemon.port(), {"--timeout", "1", "--json", "ping", "5", "--count", "3", "--interval", "0"}));
    EXPECT_EQ(client.wait(), 1);
    EXPECT_THAT(client.restOfOutput(),
                ElementsAre(HasSubstr(R"("result_":"timeout")"), HasSubstr(R"("result_":"nodeNotReached")"),
                            HasSubstr(R"("result_":"timeout")")));
}

TEST(ClientExitCodes, SeriesGoesOnAfterARefusal) {
    DaemonProcess const daemon;
    Process client(clientCommand(daemon.port(), {"--json", "ping", "99", "--count", "3", "--interval", "0"}));
    EXPECT_EQ(client.wait(), 1);
    EXPECT_EQ(client.restOfOutput().size(), 3U);
}

TEST(ClientExitCodes, SeriesEndsWithItsLastAnswerWithoutWaitingForTheInterval) {
    DaemonProcess const daemon;
    EXPECT_EQ(exitCode(daemon.port(), {"ping", "1", "--count", "1", "--interval", "3600"}), 0);
}

TEST(ClientExitCodes, RubbishFromTheDaemonIsFive) {
    FakeDaemon const daemon([](TcpConnection& connection, std::string const&) { connection.send("rubbish"); });
    EXPECT_EQ(exitCode(daemon.port(), {"ping", "5", "--count", "1"}), 5);
}

TEST(ClientExitCodes, DaemonOfAnotherVersionIsFive) {
    FakeDaemon const daemon([](TcpConnection&, std::string const&) {},
                            R"({"__name__":"zorv::VersionMsg","protocolVersion_":"2.3"})");
    Process client(clientCommand(daemon.port(), {"ping", "5", "--count", "1"}));
    EXPECT_EQ(client.wait(), 5);
    EXPECT_THAT(client.errors(),
                HasSubstr("quillet: the daemon speaks protocol version 2.3, this client speaks 1.0\n"));
}

TEST(ClientExitCodes, DaemonThatDoesNotTellItsVersionFirstIsFive) {
    FakeDaemon const daemon([](TcpConnection& connection, std::string const& line) { connection.send(line); }, "");
    EXPECT_EQ(exitCode(daemon.port(), {"ping", "5", "--count", "1"}), 5);
}

TEST(ClientExitCodes, RefusedConnectionIsThree) {
    FakeDaemon const daemon([](TcpConnection& connection, std::string const&) {
        connection.send(R"({"__name__":"zorv::Confirmable","__bases__":[{"__name__":"zorv::TConfirmable",)"
                        R"("__bases__":[],"result_":"rejected"}]})");
    });
    Process client(clientCommand(daemon.port(), {"ping", "5", "--count", "1"}));
    EXPECT_EQ(client.wait(), 3);
    EXPECT_EQ(client.errors(), "quillet: the daemon refused the connection: rejected\n");
}

TEST(ClientExitCodes, AnswerOfAnotherClassIsFive) {
    FakeDaemon const daemon([](TcpConnection& connection, std::string const& line) {
        connection.send(confirmationOf(line, ZResult::success));
    });
    EXPECT_EQ(exitCode(daemon.port(), {"ping", "5", "--count", "1"}), 5);
}

TEST(ClientExitCodes, InterruptionIs130) {
    DaemonProcess const daemon;
    Process client(clientCommand(daemon.port(), {"ping", "1", "--interval", "3600"}));
    client.readLine(); // the titles
    client.readLine(); // the first ping
    client.signal(SIGINT);
    EXPECT_EQ(client.wait(), 130);
    EXPECT_THAT(client.restOfOutput(), ElementsAre("1 sent, 1 answered, 0 lost; min/avg/max 0/0/0 ms"));
    EXPECT_EQ(client.errors(), "");
}

TEST(ClientExitCodes, InterruptionDuringAPingIs130) {
    FakeDaemon const daemon([first = true](TcpConnection& connection, std::string const& line) mutable {
        if (std::exchange(first, false)) { connection.send(line); } // it is not an answer, so the client drops it
    });
    Process client(clientCommand(daemon.port(), {"-v", "--timeout", "3600", "ping", "1"}));
    // The client is waiting when it has complained about that message.
    client.waitForError("nobody handles PingMsg");
    client.signal(SIGINT);
    EXPECT_EQ(client.wait(), 130);
}

TEST(ClientExitCodes, ReaderThatClosesTheOutputEndsTheClientWithZero) {
    DaemonProcess const daemon;
    Process client(clientCommand(daemon.port(), {"ping", "1", "--count", "100000", "--interval", "0"}));
    client.readLine();
    client.closeOutput();
    EXPECT_EQ(client.wait(), 0);
    EXPECT_EQ(client.errors(), "");
}

TEST(ClientExitCodes, OutputOnAFullDiskIsSix) {
    DaemonProcess const daemon;
    Process client({"/bin/sh", "-c",
                    "exec \"$0\" --port " + std::to_string(daemon.port()) + " ping 1 --count 1 > /dev/full",
                    programPath("quillet")});
    EXPECT_EQ(client.wait(), 6);
    EXPECT_EQ(client.errors(), "quillet: cannot write the output: " + systemText(ENOSPC) + "\n");
}

} // namespace
