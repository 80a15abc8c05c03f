#pragma once

#include "platform/Export.h"

#include <boost/asio/ip/basic_endpoint.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace boost::asio::ip {
class tcp;
} // namespace boost::asio::ip

namespace zorv {

struct TcpSocket;

/// How much one peer may ask of this process, in bytes.
struct TcpLimits {
    std::size_t line = std::size_t{16} << 20U;    ///< longest line that is read, without its end
    std::size_t backlog = std::size_t{32} << 20U; ///< most that may wait to be sent to a peer that does not read
};

/// One end of a TCP connection that carries lines of text; all of it belongs to the event loop's thread.
///
/// A line ends with "\n"; "\r\n" is read as well. What is sent waits in a queue, so that no peer can block this
/// process; a peer that lets more than the backlog limit wait is disconnected. A single line may always wait, whatever
/// its length.
class ZORV_EXPORT TcpConnection {
public:
    using Endpoint = boost::asio::ip::basic_endpoint<boost::asio::ip::tcp>;

    struct Handlers {
        /// A line arrived, given without its end.
        std::function<void(std::string const& line)> line;

        /// A line passed the limit. What is sent during this call still reaches the peer, then the connection ends.
        std::function<void()> overlong;

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
    void send(std::string const& line);

    void close();

    /// The peer's address and port; 0.0.0.0:0 where the peer was gone before it could be asked.
    Endpoint const& remote() const noexcept;

private:
    struct Impl;

    std::shared_ptr<Impl> impl_;
};

} // namespace zorv
