// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libio/TcpConnection.h"

#include <functional>
#include <memory>

namespace zorv {

class EventLoop;

/// Accepts TCP connections as long as it lives.
class ZORV_EXPORT TcpListener {
public:
    using Endpoint = TcpConnection::Endpoint;
    using Accepted = std::function<void(TcpConnection connection)>;

    /// Listens on `local`, where port 0 stands for any free one; std::runtime_error where that is not possible.
    TcpListener(EventLoop& loop, Endpoint const& local, TcpLimits const& limits, Accepted accepted);
    ~TcpListener();

    TcpListener(TcpListener const&) = delete;
    TcpListener& operator=(TcpListener const&) = delete;

    /// Where it listens, with the port that was found free.
    Endpoint local() const;

private:
    struct Impl;

    std::shared_ptr<Impl> impl_;
};

} // namespace zorv
