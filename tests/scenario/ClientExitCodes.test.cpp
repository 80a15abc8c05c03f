#include "platform/libio/EventLoop.h"
#include "platform/libio/TcpListener.h"
#include "tests/scenario/Process.h"
#include "tests/testPaths.h"

#include <boost/asio/ip/tcp.hpp>

#include <gtest/gtest.h>

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

/// A daemon that answers every line with what a test wants.
class FakeDaemon {
public:
    using Answer = std::function<void(TcpConnection& connection, std::string const& line)>;

    explicit FakeDaemon(Answer answer)
        : answer_(std::move(answer)),
          listener_(loop_, {boost::asio::ip::address_v4::loopback(), 0}, TcpLimits(),
                    [this](TcpConnection accepted) {
                        auto& connection = connections_.emplace_back(std::move(accepted));
                        connection.start(
                            {[this, &connection](std::string const& line) { answer_(connection, line); }, [] {}, {}});
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
    EventLoop loop_;
    std::list<TcpConnection> connections_;
    TcpListener listener_;
    unsigned short port_;
    std::thread thread_;
};

int exitCode(unsigned short port, std::vector<std::string> const& arguments) {
    return Process(clientCommand(port, arguments)).wait();
}

TEST(ClientExitCodes, SuccessIsZero) {
    DaemonProcess const daemon;
    EXPECT_EQ(0, exitCode(daemon.port(), {"ping", "5"}));
    EXPECT_EQ(0, exitCode(daemon.port(), {"ping", "c0ffee01:5"}));
}

TEST(ClientExitCodes, HelpAndVersionAreZero) {
    EXPECT_EQ(0, exitCode(1, {"--help"}));
    EXPECT_EQ(0, exitCode(1, {"ping", "--help"}));
    Process version({programPath("quillet"), "--version"});
    EXPECT_EQ("quillet 0.1.0", version.readLine());
    EXPECT_EQ(0, version.wait());
}

TEST(ClientExitCodes, RefusalIsOne) {
    DaemonProcess const daemon;
    EXPECT_EQ(1, exitCode(daemon.port(), {"ping", "99"}));
    EXPECT_EQ(1, exitCode(daemon.port(), {"ping", "8"}));
    EXPECT_EQ(1, exitCode(daemon.port(), {"ping", "9"}));
    EXPECT_EQ(1, exitCode(daemon.port(), {"ping", "deadbeef:5"}));
}

TEST(ClientExitCodes, DaemonThatDoesNotKnowTheMessageIsOne) {
    FakeDaemon const daemon([](TcpConnection& connection, std::string const& line) {
        auto const id = line.substr(line.find("\"id_\":\"") + 7, 36);
        connection.send(R"({"__name__":"zorv::Confirmable","__bases__":[{"__name__":"zorv::TConfirmable","__bases__":[)"
                        R"({"__name__":"zorv::TMessage","__bases__":[],"correlation_":")" +
                        id + R"("}],"result_":"rejected"}]})");
    });
    Process client(clientCommand(daemon.port(), {"ping", "5"}));
    EXPECT_EQ(1, client.wait());
    EXPECT_EQ("quillet: the daemon did not understand the request: rejected\n", client.errors());
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
        EXPECT_EQ(2, client.wait()) << (arguments.empty() ? "" : arguments.back());
        EXPECT_NE("", client.errors());
        EXPECT_TRUE(client.restOfOutput().empty());
    }
}

TEST(ClientExitCodes, NoDaemonIsThree) {
    unsigned short port = 0;
    { port = DaemonProcess().port(); }
    Process client(clientCommand(port, {"ping", "5"}));
    EXPECT_EQ(3, client.wait());
    EXPECT_EQ("quillet: cannot connect to 127.0.0.1 port " + std::to_string(port) + ": Connection refused\n",
              client.errors());
}

TEST(ClientExitCodes, LostConnectionIsThree) {
    FakeDaemon const daemon([](TcpConnection& connection, std::string const&) { connection.close(); });
    EXPECT_EQ(3, exitCode(daemon.port(), {"ping", "5"}));
}

TEST(ClientExitCodes, NoAnswerInTimeIsFour) {
    FakeDaemon const daemon([](TcpConnection&, std::string const&) {});
    Process client(clientCommand(daemon.port(), {"--timeout", "0.1", "--json", "ping", "5"}));
    EXPECT_NE(std::string::npos, client.readLine().find("\"result_\":\"timeout\""));
    EXPECT_EQ(4, client.wait());
}

TEST(ClientExitCodes, RefusalWithinASeriesOutranksATimeOut) {
    DaemonProcess const daemon({"--network", sourcePath("tests/scenario/lossy.json")});
    Process client(clientCommand(daemon.port(), {"--timeout", "5", "ping", "5", "--count", "20", "--interval", "0"}));
    EXPECT_EQ(1, client.wait());
    EXPECT_EQ(21U, client.restOfOutput().size()); // the series went on to its end
}

TEST(ClientExitCodes, RubbishFromTheDaemonIsFive) {
    FakeDaemon const daemon([](TcpConnection& connection, std::string const&) { connection.send("rubbish"); });
    EXPECT_EQ(5, exitCode(daemon.port(), {"ping", "5"}));
}

TEST(ClientExitCodes, AnswerOfAnotherClassIsFive) {
    FakeDaemon const daemon([](TcpConnection& connection, std::string const& line) {
        auto const id = line.substr(line.find("\"id_\":\"") + 7, 36);
        connection.send(R"({"__name__":"zorv::Confirmable","__bases__":[{"__name__":"zorv::TConfirmable","__bases__":[)"
                        R"({"__name__":"zorv::TMessage","__bases__":[],"correlation_":")" +
                        id + R"("}],"result_":"success"}]})");
    });
    EXPECT_EQ(5, exitCode(daemon.port(), {"ping", "5"}));
}

TEST(ClientExitCodes, InterruptionIs130) {
    DaemonProcess const daemon;
    Process client(clientCommand(daemon.port(), {"ping", "1", "--count", "1000", "--interval", "3600"}));
    client.readLine(); // the titles
    client.readLine(); // the first ping
    client.signal(SIGINT);
    EXPECT_EQ(130, client.wait());
    EXPECT_EQ("", client.errors());
}

TEST(ClientExitCodes, InterruptionDuringAPingIs130) {
    FakeDaemon const daemon([](TcpConnection& connection, std::string const& line) {
        static bool first = true;
        if (std::exchange(first, false)) { connection.send(line); } // answers nothing, and so is dropped
    });
    Process client(clientCommand(daemon.port(), {"--timeout", "3600", "ping", "1"}));
    // The client is waiting once it has complained about the message that answers nothing.
    client.waitForError("nobody handles PingMsg");
    client.signal(SIGINT);
    EXPECT_EQ(130, client.wait());
}

TEST(ClientExitCodes, ReaderThatHasSeenEnoughEndsTheClientQuietly) {
    DaemonProcess const daemon;
    Process client(clientCommand(daemon.port(), {"ping", "1", "--count", "100000", "--interval", "0"}));
    client.readLine();
    client.closeOutput();
    EXPECT_EQ(0, client.wait());
    EXPECT_EQ("", client.errors());
}

TEST(ClientExitCodes, FullDiskIsSix) {
    DaemonProcess const daemon;
    Process client({"/bin/sh", "-c", "exec \"$0\" --port " + std::to_string(daemon.port()) + " ping 1 > /dev/full",
                    programPath("quillet")});
    EXPECT_EQ(6, client.wait());
    EXPECT_EQ("quillet: cannot write the output: No space left on device\n", client.errors());
}

} // namespace
