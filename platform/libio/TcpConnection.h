// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <boost/asio/ip/basic_endpoint.hpp>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace boost::asio::ip {
class tcp;
} // namespace boost::asio::ip

namespace zorv {

class TcpBudget;
struct TcpSocket;

/// How much one peer may ask of this process.
struct TcpLimits {
    std::size_t line = std::size_t{16} << 20U;    ///< longest line that is read, without its end, bytes
    std::size_t backlog = std::size_t{16} << 20U; ///< most that may wait to be sent to a peer that does not read, bytes

    /// How long a peer that is being disconnected may still read what is queued for it.
    std::chrono::milliseconds farewell = std::chrono::seconds(10);

    /// Bounds all connections that share it; without one, there is no common bound.
    std::shared_ptr<TcpBudget> budget;
};

/// One end of a connection, over TCP or a Unix-domain socket, that carries lines of text; all of it belongs to the event
/// loop's thread.
///
/// A line ends with "\n"; "\r\n" is read as well. What is sent waits in a queue, so that no peer can block this
/// process; a peer that lets more than the backlog limit wait is disconnected, and so is one for whose lines the memory
/// runs out. A peer that sends many lines at once has them read a few at a time, so that the others get their turns.
class ZORV_EXPORT TcpConnection {
public:
    using Endpoint = boost::asio::ip::basic_endpoint<boost::asio::ip::tcp>;

    /// The reason of the usual end.
    static constexpr char const* closedByPeer = "closed by the peer";

    struct Handlers {
        /// A line arrived, given without its end.
        std::function<void(std::string const& line)> line;

        /// A line passed the limit. What is sent during this call still reaches the peer, then the connection ends.
        std::function<void()> overlong;

        /// The peer sends nothing any more, but may still read: called once, and then finish() ends the connection.
        /// Without this handler the connection ends at once.
        std::function<void()> inputEnded;

        /// The connection ended, for whatever reason; called once, and never during a call to the connection.
        std::function<void(std::string const& reason)> closed;
    };

    TcpConnection(TcpSocket&& socket, TcpLimits const& limits);

    /// Ends the connection; no handler is called any more.
    ~TcpConnection();

    TcpConnection(TcpConnection const&) = delete;
    TcpConnection& operator=(TcpConnection const&) = delete;
    TcpConnection(TcpConnection&&) noexcept = default;
    TcpConnection& operator=(TcpConnection&&) = delete;

    /// Begins to read; to be called once.
    void start(Handlers handlers);

    /// Queues one line, given without its end; nothing happens on a connection that has ended.
    ///
    /// A line that is moved here, and has the capacity for its end, is sent without a copy.
    void send(std::string line);

    /// The longest line that the line limit and the backlog limit allow to send.
    std::size_t longestLine() const noexcept;

    /// How many bytes of what was sent are still queued here.
    std::size_t waiting() const noexcept;

    /// Sets how many bytes are kept elsewhere for this peer; they count as the peer's.
    void occupy(std::size_t bytes);

    /// Ends the connection at once.
    void close(std::string const& reason = "closed here");

    /// Ends the connection once the peer has got what was sent before, or after the farewell time; what it still sends
    /// is thrown away.
    void finish(std::string const& reason);

    /// The peer's address and port; 0.0.0.0:0 where the peer was gone before it could be asked, and 127.0.0.1:0 for a peer
    /// on a Unix-domain socket.
    Endpoint const& remote() const noexcept;

private:
    struct Impl;

    std::shared_ptr<Impl> impl_;
};

} // namespace zorv
