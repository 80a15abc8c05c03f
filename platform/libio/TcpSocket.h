// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libio/TcpConnection.h"

#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/local/stream_protocol.hpp>

namespace zorv {

/// A connected socket on its way from who made it to a TcpConnection; for the sources of this folder.
struct TcpSocket {
    explicit TcpSocket(boost::asio::ip::tcp::socket&& connected);

    /// Whoever is at the other end is on this machine: its address is 127.0.0.1, and its port 0.
    explicit TcpSocket(boost::asio::local::stream_protocol::socket&& connected);

    TcpConnection::Endpoint remote;
    boost::asio::generic::stream_protocol::socket socket;
};

} // namespace zorv
