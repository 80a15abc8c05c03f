// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/MessageClient.h"
#include "tests/scenario/Process.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/testPaths.h"

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using testing::Contains;
using testing::Not;

/// What a service manager hears: datagrams at a socket, whose name the daemon finds in its environment.
class NotifySocket {
public:
    explicit NotifySocket(std::string path) : path_(std::move(path)), socket_(::socket(AF_UNIX, SOCK_DGRAM, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path_.c_str(), sizeof address.sun_path - 1);
        void const* const bytes = &address;
        if (::bind(socket_, static_cast<sockaddr const*>(bytes), sizeof address) != 0) {
            throw std::runtime_error("cannot bind");
        }
        timeval const patience{60, 0};
        ::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    }
    ~NotifySocket() { ::close(socket_); }
    NotifySocket(NotifySocket const&) = delete;
    NotifySocket& operator=(NotifySocket const&) = delete;

    std::string const& path() const noexcept { return path_; }

    /// The next datagram; throws where none comes.
    std::string receive() {
        auto const text = read(0);
        if (text.empty()) { throw std::runtime_error("the daemon notifies nobody"); }
        return text;
    }

    /// Waits for a datagram; those before it.
    std::vector<std::string> waitFor(std::string const& text) {
        std::vector<std::string> before;
        for (auto heard = receive(); heard != text; heard = receive()) { before.push_back(heard); }
        return before;
    }

    /// What has come and was not received.
    std::vector<std::string> rest() {
        std::vector<std::string> all;
        for (auto heard = read(MSG_DONTWAIT); !heard.empty(); heard = read(MSG_DONTWAIT)) { all.push_back(heard); }
        return all;
    }

private:
    std::string read(int flags) {
        std::array<char, 4096> buffer{};
        auto const size = ::recv(socket_, buffer.data(), buffer.size(), flags);
        return {buffer.data(), size > 0 ? static_cast<std::size_t>(size) : 0};
    }

    std::string path_;
    int socket_;
};

/// Is answered once the module is known.
ZResult::Enum askSession(MessageClient& client) {
    return client.ask(boost::make_shared<SessionLayerMsg>(SessionLayerOp::ping))->result();
}

class ServiceManager : public testing::Test {
protected:
    std::vector<std::string> command(std::vector<std::string> const& environment,
                                     std::vector<std::string> const& arguments = {"--port", "0"}) const {
        std::vector<std::string> command{"/usr/bin/env", "NOTIFY_SOCKET=" + manager_.path()};
        command.insert(command.end(), environment.begin(), environment.end());
        command.push_back(programPath("zwaved"));
        command.insert(command.end(), arguments.begin(), arguments.end());
        return command;
    }

    TemporaryDirectory directory_;
    NotifySocket manager_{directory_.path("notify")};
};

TEST_F(ServiceManager, HearsThatTheDaemonIsReadyWhenItServesAndThatItStops) {
    Process daemon(command({}));
    EXPECT_THAT(manager_.waitFor("READY=1"), Contains("STATUS=starting"));
    MessageClient client(announcedPort(daemon)); // it has said so before
    EXPECT_EQ(askSession(client), ZResult::success);
    EXPECT_THAT(manager_.rest(), Contains("STATUS=ready"));
    daemon.signal(SIGTERM);
    EXPECT_EQ(daemon.wait(), 0);
    EXPECT_THAT(manager_.rest(), testing::ElementsAre("STOPPING=1\nSTATUS=stopping"));
}

TEST_F(ServiceManager, HearsNothingOfADaemonThatCannotServe) {
    Process noDevice(
        command({}, {"--port", "0", "--device", directory_.path("none"), "--state", directory_.path("s")}));
    EXPECT_EQ(noDevice.wait(), 1);
    EXPECT_THAT(manager_.rest(), Not(Contains("READY=1")));
}

TEST_F(ServiceManager, HearsItsWatchdogFedTwiceInItsTime) {
    Process daemon(command({"WATCHDOG_USEC=200000"}));
    manager_.waitFor("WATCHDOG=1");
    auto const begin = std::chrono::steady_clock::now();
    constexpr int times = 5;
    for (int i = 0; i < times; ++i) { manager_.waitFor("WATCHDOG=1"); }
    // A machine under load may delay them, but nothing makes them come early.
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds((times - 1) * 100));
}

TEST_F(ServiceManager, HearsNothingOfAWatchdogThatIsNotSet) {
    Process daemon(command({}));
    manager_.waitFor("READY=1");
    MessageClient client(announcedPort(daemon));
    askSession(client);
    daemon.signal(SIGTERM);
    EXPECT_EQ(daemon.wait(), 0);
    EXPECT_THAT(manager_.rest(), Not(Contains("WATCHDOG=1")));
}

TEST_F(ServiceManager, NeedNotBeThere) {
    Process daemon(
        {"/usr/bin/env", "NOTIFY_SOCKET=" + directory_.path("nobody"), programPath("zwaved"), "--port", "0"});
    MessageClient client(announcedPort(daemon));
    EXPECT_EQ(askSession(client), ZResult::success);
}

} // namespace
