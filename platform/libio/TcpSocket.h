// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/asio/ip/tcp.hpp>

namespace zorv {

/// A connected socket on its way from who made it to a TcpConnection; for the sources of this folder.
struct TcpSocket {
    boost::asio::ip::tcp::socket socket;
};

} // namespace zorv
