// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/connectUnix.h"

#include "platform/libio/EventLoop.h"
#include "platform/libio/TcpSocket.h"

#include <boost/asio/io_context.hpp>

#include <sys/un.h>

#include <memory>
#include <utility>

namespace zorv {

using local = boost::asio::local::stream_protocol;

/// It is known at once whether somebody listens there.
void connectUnix(EventLoop& loop, std::string const& path, TcpLimits const& limits, ConnectHandlers handlers) {
    auto const socket = std::make_shared<local::socket>(loop.context());
    boost::system::error_code error = boost::asio::error::name_too_long;
    if (path.size() < sizeof(sockaddr_un::sun_path)) { socket->connect(local::endpoint(path), error); }
    loop.post([socket, error, limits, handlers = std::move(handlers)] {
        if (error) { return handlers.failed(error.message()); }
        handlers.connected(TcpConnection(TcpSocket(std::move(*socket)), limits));
    });
}

} // namespace zorv
