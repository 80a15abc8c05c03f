// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/EventLoop.h"
#include "platform/libio/UnixListener.h"
#include "platform/libio/connectUnix.h"
#include "tests/scenario/Process.h"
#include "tests/scenario/runLoop.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/testPaths.h"

#include <boost/asio/ip/tcp.hpp>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <optional>
#include <string>

namespace {

using namespace scenario;
using namespace zorv;

class UnixSockets : public testing::Test {
protected:
    std::string error(std::string const& path) {
        try {
            UnixListener const listener(loop_, path, TcpLimits(), {});
        } catch (std::runtime_error const& error) { return error.what(); }
        return "";
    }

    TemporaryDirectory directory_;
    std::string path_ = directory_.path("socket");
    EventLoop loop_;
};

TEST_F(UnixSockets, CarryLinesBothWaysOfAPeerOnThisMachine) {
    std::optional<TcpConnection> served;
    UnixListener const listener(loop_, path_, TcpLimits(), [&](TcpConnection connection) {
        EXPECT_TRUE(connection.remote().address().is_loopback());
        EXPECT_EQ(connection.remote().port(), 0);
        served.emplace(std::move(connection));
        TcpConnection::Handlers handlers;
        handlers.line = [&served](std::string const& line) { served->send("got " + line); };
        served->start(std::move(handlers));
    });
    std::optional<TcpConnection> client;
    std::string answer;
    ConnectHandlers handlers;
    handlers.connected = [&](TcpConnection connection) {
        client.emplace(std::move(connection));
        TcpConnection::Handlers lines;
        lines.line = [&](std::string const& line) {
            answer = line;
            loop_.stop();
        };
        client->start(std::move(lines));
        client->send("it");
    };
    connectUnix(loop_, path_, TcpLimits(), std::move(handlers));
    runLoop(loop_);
    EXPECT_EQ(answer, "got it");
}

TEST_F(UnixSockets, HaveAFileOfModeOwnerAndGroupThatGoesWithTheListener) {
    struct stat found = {};
    {
        UnixListener const listener(loop_, path_, TcpLimits(), {});
        ASSERT_EQ(::stat(path_.c_str(), &found), 0);
        EXPECT_EQ(found.st_mode & 07777U, 0660U);
        EXPECT_EQ(error(path_), "cannot listen on unix:" + path_ + ": in use");
    }
    EXPECT_NE(::stat(path_.c_str(), &found), 0);
}

TEST_F(UnixSockets, TakeTheFileOfAProcessThatIsGone) {
    auto const left = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path_.c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(left, reinterpret_cast<sockaddr const*>(&address), sizeof address), 0);
    ::close(left);
    EXPECT_EQ(error(path_), "");
}

TEST_F(UnixSockets, LeaveAnyOtherFileAndRefuseAPathThatDoesNotFit) {
    auto const file = directory_.write("file", "mine");
    EXPECT_EQ(error(file), "cannot listen on unix:" + file + ": something else is there");
    EXPECT_EQ(::access(file.c_str(), F_OK), 0);
    std::string const expected = ": a path of 1 to 107 bytes is needed";
    EXPECT_EQ(error(std::string(108, 'x')), "cannot listen on unix:" + std::string(108, 'x') + expected);
    EXPECT_EQ(error(""), "cannot listen on unix:" + expected);
}

TEST_F(UnixSockets, ThatNobodyListensOnAreToldSo) {
    std::string reason;
    ConnectHandlers handlers;
    handlers.connected = [](TcpConnection const&) { ADD_FAILURE() << "nobody is there"; };
    handlers.failed = [&](std::string const& why) {
        reason = why;
        loop_.stop();
    };
    connectUnix(loop_, path_, TcpLimits(), std::move(handlers));
    runLoop(loop_);
    EXPECT_NE(reason, "");
}

TEST_F(UnixSockets, AreListenedToByTheDaemonBesideTcp) {
    Process daemon({programPath("zwaved"), "--port", "0", "--listen", "127.0.0.1", "--listen", "unix:" + path_});
    EXPECT_EQ(daemon.readLine().rfind("listening on 127.0.0.1:", 0), 0U);
    EXPECT_EQ(daemon.readLine(), "listening on unix:" + path_);
    daemon.signal(SIGTERM);
    EXPECT_EQ(daemon.wait(), 0);
    EXPECT_NE(::access(path_.c_str(), F_OK), 0);
}

} // namespace
