// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libio/connectTcp.h"

#include <chrono>
#include <string>

namespace zorv {

class EventLoop;
class TMessage;

/// Where a daemon listens.
struct DaemonPlace {
    std::string host = "127.0.0.1";
    unsigned short port = 4123;
    std::string socket = {}; ///< path of a Unix-domain socket; where it is not empty, host and port do not count
};

/// "127.0.0.1 port 4123", or the path of the socket.
ZORV_EXPORT std::string toString(DaemonPlace const& place);

/// Connects to a daemon. Each side then sends its version, without waiting for the other's.
ZORV_EXPORT void connectDaemon(EventLoop& loop, DaemonPlace const& place, std::chrono::milliseconds timeout,
                               ConnectHandlers handlers);

/// The complaint about a daemon's first message; empty if it is a version that this library understands.
ZORV_EXPORT std::string complaintAboutOpening(TMessage const& first);

} // namespace zorv
