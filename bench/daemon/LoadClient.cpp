// SPDX-License-Identifier: Apache-2.0
#include "bench/daemon/LoadClient.h"

#include "platform/libtransport/Serializer.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/VersionMsg.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace bench {

namespace {

constexpr int silenceMs = 10'000;

[[noreturn]] void fail(char const* what) { throw std::system_error(errno, std::generic_category(), what); }

std::string lineOf(zorv::Serializable const& message) {
    zorv::Serializer s;
    message.serialInserter(s);
    return s.str() + '\n';
}

int connectTo(unsigned short port) {
    int const socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0) { fail("socket"); }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int const on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (::connect(socket, reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) { fail("connect"); }
    return socket;
}

/// Lines are shorter than what a socket takes at once.
void sendAll(int socket, std::string const& text) {
    if (::send(socket, text.data(), text.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(text.size())) { fail("send"); }
}

} // namespace

LoadClient::LoadClient(unsigned short port, std::size_t connections) : poll_(::epoll_create1(EPOLL_CLOEXEC)) {
    if (poll_ < 0) { fail("epoll_create1"); }
    auto const version = lineOf(*zorv::VersionMsg::create("1.0"));
    connections_.reserve(connections);
    for (std::size_t i = 0; i < connections; ++i) {
        auto& connection = connections_.emplace_back();
        connection.socket = connectTo(port);
        connection.request = lineOf(zorv::PingMsg(zorv::ZwaveAddress(0, 1)));
        sendAll(connection.socket, version);
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.u64 = i;
        if (::epoll_ctl(poll_, EPOLL_CTL_ADD, connection.socket, &event) != 0) { fail("epoll_ctl"); }
    }
}

LoadClient::~LoadClient() {
    for (auto const& connection : connections_) { ::close(connection.socket); }
    ::close(poll_);
}

void LoadClient::ask(Connection& connection) {
    connection.sent = Clock::now();
    sendAll(connection.socket, connection.request);
}

bool LoadClient::receive(Connection& connection) {
    std::array<char, 16384> chunk{};
    auto const size = ::recv(connection.socket, chunk.data(), chunk.size(), 0);
    if (size < 0) { fail("recv"); }
    if (size == 0) { throw std::runtime_error("the server closed a connection"); }
    connection.unread.append(chunk.data(), static_cast<std::size_t>(size));
    bool answered = false;
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = connection.unread.find('\n', begin)) != std::string::npos; begin = end + 1) {
        auto const line = std::string_view(connection.unread).substr(begin, end - begin);
        if (line.find("\"rejected\"") != std::string_view::npos) {
            throw std::runtime_error("the server refused: " + std::string(line));
        }
        // Versions come without being asked for.
        answered = answered || line.find("zorv::PingMsg") != std::string_view::npos;
    }
    connection.unread.erase(0, begin);
    return answered;
}

Load LoadClient::run(std::chrono::milliseconds duration) {
    Load load;
    auto const start = Clock::now();
    auto const end = start + duration;
    std::size_t waiting = 0;
    for (auto& connection : connections_) {
        ask(connection);
        ++waiting;
    }
    std::array<epoll_event, 64> events{};
    while (waiting > 0) {
        int const ready = ::epoll_wait(poll_, events.data(), static_cast<int>(events.size()), silenceMs);
        if (ready < 0 && errno != EINTR) { fail("epoll_wait"); }
        if (ready == 0) { throw std::runtime_error("the server is silent"); }
        for (int i = 0; i < ready; ++i) {
            auto const& event = events.at(static_cast<std::size_t>(i));
            auto& connection = connections_[static_cast<std::size_t>(event.data.u64)];
            if (!receive(connection)) { continue; }
            auto const now = Clock::now();
            load.waits.push_back(std::chrono::duration<double, std::micro>(now - connection.sent).count());
            load.seconds = std::chrono::duration<double>(now - start).count();
            if (now < end) {
                ask(connection);
            } else {
                --waiting;
            }
        }
    }
    return load;
}

} // namespace bench
