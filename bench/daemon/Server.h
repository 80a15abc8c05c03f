// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace bench {

/// A server in a process of its own, on the first processor; ended with the object.
class Server {
public:
    /// Starts command[0] with the other elements as its arguments, and waits for its line "listening on ADDRESS:PORT".
    explicit Server(std::vector<std::string> const& command);
    ~Server();

    Server(Server const&) = delete;
    Server& operator=(Server const&) = delete;

    unsigned short port() const noexcept { return port_; }

    /// Processor time that the process has used so far.
    double cpuSeconds() const;

private:
    pid_t pid_ = -1;
    unsigned short port_ = 0;
};

/// Keeps the calling process, and those that it starts, to one processor; nothing happens where there is no such one.
void pinTo(unsigned int processor) noexcept;

} // namespace bench
