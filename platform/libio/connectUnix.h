// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libio/connectTcp.h"

#include <string>

namespace zorv {

/// Connects to a Unix-domain socket of this machine.
ZORV_EXPORT void connectUnix(EventLoop& loop, std::string const& path, TcpLimits const& limits,
                             ConnectHandlers handlers);

} // namespace zorv
