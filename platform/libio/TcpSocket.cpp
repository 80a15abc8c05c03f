// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/TcpSocket.h"

#include <netinet/tcp.h>
#include <sys/socket.h>

#include <utility>

namespace zorv {

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;

/// Lets the system find out in about two minutes, not hours, that a silent peer's machine is gone.
void setOptions(tcp::socket& socket) {
    error_code ignored;
    socket.set_option(tcp::no_delay(true), ignored);
    socket.set_option(tcp::socket::keep_alive(true), ignored);
    auto const set = [&socket](int option, int value) {
        ::setsockopt(socket.native_handle(), IPPROTO_TCP, option, &value, sizeof value);
    };
    set(TCP_KEEPIDLE, 60);
    set(TCP_KEEPINTVL, 15);
    set(TCP_KEEPCNT, 4);
}

tcp::endpoint remoteOf(tcp::socket const& socket) {
    error_code ignored;
    return socket.remote_endpoint(ignored);
}

tcp::socket prepared(tcp::socket&& socket) {
    setOptions(socket);
    return std::move(socket);
}

} // namespace

TcpSocket::TcpSocket(tcp::socket&& connected) : remote(remoteOf(connected)), socket(prepared(std::move(connected))) {}

TcpSocket::TcpSocket(boost::asio::local::stream_protocol::socket&& connected)
    : remote(boost::asio::ip::address_v4::loopback(), 0), socket(std::move(connected)) {}

} // namespace zorv
