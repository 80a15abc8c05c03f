// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <string>

namespace zorv {

/// Where a daemon listens.
struct DaemonPlace {
    std::string host = "127.0.0.1";
    unsigned short port = 4123;
    std::string socket = {}; ///< path of a Unix-domain socket; where it is not empty, host and port do not count
};

/// "127.0.0.1 port 4123", or the path of the socket.
ZORV_EXPORT std::string toString(DaemonPlace const& place);

} // namespace zorv
