// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace bench {

/// What a server did in a while: its answers, and how long each was waited for.
struct Load {
    double seconds = 0;
    std::vector<double> waits; ///< microseconds, one for each answer, in no order
};

/// Many clients in one thread. Each sends a ping, waits for its answer, and sends the next.
///
/// The sockets are used directly, so that as little as possible of what is measured is spent here.
class LoadClient {
public:
    /// Connects them all to the server on this port of the loopback interface.
    LoadClient(unsigned short port, std::size_t connections);
    ~LoadClient();

    LoadClient(LoadClient const&) = delete;
    LoadClient& operator=(LoadClient const&) = delete;

    /// Throws where a server closes a connection, refuses a ping, or stays silent for ten seconds.
    Load run(std::chrono::milliseconds duration);

private:
    using Clock = std::chrono::steady_clock;

    struct Connection {
        int socket = -1;
        std::string request; // a line with its end
        std::string unread;  // the beginning of a line
        Clock::time_point sent;
    };

    static void ask(Connection& connection);
    /// Whether the answer to the last ping was among what arrived.
    static bool receive(Connection& connection);

    int poll_ = -1;
    std::vector<Connection> connections_;
};

} // namespace bench
