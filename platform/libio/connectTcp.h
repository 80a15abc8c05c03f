// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libio/TcpConnection.h"

#include <chrono>
#include <functional>
#include <string>

namespace zorv {

class EventLoop;

/// One of them is called, once, with the outcome.
struct ConnectHandlers {
    std::function<void(TcpConnection connection)> connected;
    std::function<void(std::string const& reason)> failed;
};

/// Connects to `host`, a name or an address.
ZORV_EXPORT void connectTcp(EventLoop& loop, std::string const& host, unsigned short port,
                            std::chrono::milliseconds timeout, TcpLimits const& limits, ConnectHandlers handlers);

} // namespace zorv
