// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/LineClient.h"

#include "platform/libtransport/readMessage.h"
#include "zwave/libquillet/PingMsg.h"

#include <linux/tcp.h> // not netinet/tcp.h, whose tcp_info is shorter
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <sstream>
#include <stdexcept>
#include <utility>

namespace scenario {

namespace {

constexpr time_t deadlineSeconds = 30;

void set(int socket, int option, void const* value, socklen_t size) {
    ::setsockopt(socket, SOL_SOCKET, option, value, size);
}

sockaddr_in loopback(unsigned short port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

} // namespace

LineClient::LineClient(unsigned short port, int receiveBuffer, unsigned short localPort)
    : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    timeval const deadline{deadlineSeconds, 0};
    set(socket_, SO_RCVTIMEO, &deadline, sizeof deadline);
    set(socket_, SO_SNDTIMEO, &deadline, sizeof deadline);
    if (receiveBuffer > 0) { set(socket_, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer); }
    auto const own = loopback(localPort);
    if (localPort != 0 && ::bind(socket_, reinterpret_cast<sockaddr const*>(&own), sizeof own) != 0) {
        ::close(socket_);
        throw std::runtime_error("cannot bind");
    }
    auto const address = loopback(port);
    if (::connect(socket_, reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
        ::close(socket_);
        throw std::runtime_error("cannot connect");
    }
}

LineClient::~LineClient() { close(); }

bool LineClient::send(std::string const& bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
        auto const sent = ::send(socket_, bytes.data() + at, bytes.size() - at, MSG_NOSIGNAL);
        if (sent <= 0) {
            if (errno == EAGAIN) { throw std::runtime_error("the other side does not read"); }
            return false;
        }
        at += static_cast<std::size_t>(sent);
    }
    return true;
}

std::string LineClient::receiveLine() {
    for (;;) {
        auto const end = unread_.find('\n');
        if (end != std::string::npos) {
            auto line = unread_.substr(0, end);
            unread_.erase(0, end + 1);
            return line;
        }
        char buffer[16384];
        auto const size = ::recv(socket_, buffer, sizeof buffer, 0);
        if (size < 0 && errno == EAGAIN) { throw std::runtime_error("nothing arrives"); }
        if (size <= 0) { throw std::out_of_range("the connection ended"); }
        unread_.append(buffer, static_cast<std::size_t>(size));
    }
}

boost::shared_ptr<zorv::TMessage> LineClient::receive() { return zorv::readMessage(receiveLine()); }

bool LineClient::endsAfter(int lines) {
    int received = 0;
    try {
        for (;; ++received) { receiveLine(); }
    } catch (std::out_of_range const&) { return received == lines; }
}

unsigned short LineClient::localPort() const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

unsigned int LineClient::receivedSegments() const {
    tcp_info info{};
    socklen_t size = sizeof info;
    if (::getsockopt(socket_, IPPROTO_TCP, TCP_INFO, &info, &size) != 0) { throw std::runtime_error("cannot ask"); }
    return info.tcpi_data_segs_in;
}

void LineClient::endOutput() { ::shutdown(socket_, SHUT_WR); }

void LineClient::close() {
    if (socket_ >= 0) { ::close(std::exchange(socket_, -1)); }
}

void LineClient::reset() {
    linger const atOnce{1, 0};
    set(socket_, SO_LINGER, &atOnce, sizeof atOnce);
    close();
}

std::string const& versionLine() {
    static std::string const line = R"({"__name__":"zorv::VersionMsg","protocolVersion_":"1.0"})";
    return line;
}

std::string pingLine(unsigned char nodeId) {
    std::ostringstream line;
    zorv::PingMsg(zorv::ZwaveAddress(0, nodeId)).print(line);
    return line.str();
}

} // namespace scenario
