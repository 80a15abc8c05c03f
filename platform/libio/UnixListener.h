// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libio/TcpConnection.h"

#include <functional>
#include <memory>
#include <string>

namespace zorv {

class EventLoop;

/// Accepts connections on a Unix-domain socket as long as it lives; its file goes with it.
///
/// They carry lines like those over TCP. The file can be used by its owner and its group (mode 0660).
class ZORV_EXPORT UnixListener {
public:
    using Accepted = std::function<void(TcpConnection connection)>;

    /// Makes the file; one that a process has left behind which is gone is replaced. std::runtime_error where that is not
    /// possible, such as "cannot listen on unix:/run/zwaved/socket: in use".
    UnixListener(EventLoop& loop, std::string const& path, TcpLimits const& limits, Accepted accepted);
    ~UnixListener();

    UnixListener(UnixListener const&) = delete;
    UnixListener& operator=(UnixListener const&) = delete;

private:
    struct Impl;

    std::string path_;
    std::shared_ptr<Impl> impl_;
};

} // namespace zorv
