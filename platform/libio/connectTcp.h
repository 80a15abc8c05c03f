// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libio/TcpConnection.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace zorv {

class EventLoop;

/// Connects to `host`, a name or an address, and calls `done` once: with the connection, or with none and the reason.
ZORV_EXPORT void
connectTcp(EventLoop& loop, std::string const& host, unsigned short port, std::chrono::milliseconds timeout,
           TcpLimits const& limits,
           std::function<void(std::optional<TcpConnection> connection, std::string const& reason)> done);

} // namespace zorv
