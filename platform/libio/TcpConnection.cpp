#include "platform/libio/TcpConnection.h"

#include "platform/libio/TcpSocket.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>

#include <netinet/tcp.h>
#include <sys/socket.h>

#include <array>
#include <chrono>
#include <string_view>
#include <utility>

namespace zorv {

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;

constexpr std::size_t chunkSize = 16384;
constexpr std::size_t keptCapacity = 65536; // a buffer that grew beyond this is given back after its line

// How long the rest of an over-long line is read and thrown away. Closing at once would reset the connection, and the
// peer would lose the answer that tells it why.
constexpr auto drainTime = std::chrono::seconds(10);

void clear(std::string& buffer) {
    if (buffer.capacity() > keptCapacity) {
        buffer = std::string();
    } else {
        buffer.clear();
    }
}

/// Lets the system find out in about two minutes, not hours, that a silent peer's machine is gone.
void setOptions(tcp::socket& socket) {
    error_code ignored;
    socket.set_option(tcp::no_delay(true), ignored);
    socket.set_option(tcp::socket::keep_alive(true), ignored);
    auto const set = [&socket](int option, int value) {
        ::setsockopt(socket.native_handle(), IPPROTO_TCP, option, &value, sizeof value);
    };
    set(TCP_KEEPIDLE, 60);
    set(TCP_KEEPINTVL, 15);
    set(TCP_KEEPCNT, 4);
}

} // namespace

struct TcpConnection::Impl : std::enable_shared_from_this<TcpConnection::Impl> {
    enum class State {
        open,
        draining, // a line was too long: what is queued still goes out, what arrives is thrown away
        closed
    };

    Impl(tcp::socket&& theSocket, TcpLimits const& theLimits)
        : socket(std::move(theSocket)), limits(theLimits), drainTimer(socket.get_executor()) {
        setOptions(socket);
        error_code ignored;
        remote = socket.remote_endpoint(ignored);
    }

    void read() {
        socket.async_read_some(
            boost::asio::buffer(chunk),
            [self = shared_from_this()](error_code const& error, std::size_t size) { self->received(error, size); });
    }

    void received(error_code const& error, std::size_t size) {
        if (error) {
            end(error == boost::asio::error::eof ? "closed by the peer" : error.message());
            return;
        }
        if (state == State::open) { split(std::string_view(chunk.data(), size)); }
        if (state != State::closed) { read(); }
    }

    void split(std::string_view data) {
        while (state == State::open && !data.empty()) {
            auto const lineEnd = data.find('\n');
            auto const piece = data.substr(0, lineEnd);
            bool const complete = lineEnd != std::string_view::npos;
            // One more than the limit may be the carriage return of the line's end.
            if (partial.size() + piece.size() > limits.line + 1) { return drain(); }
            partial.append(piece);
            if (!complete) { return; }
            data.remove_prefix(lineEnd + 1);
            if (!partial.empty() && partial.back() == '\r') { partial.pop_back(); }
            if (partial.size() > limits.line) { return drain(); }
            handlers.line(partial);
            clear(partial);
        }
    }

    void drain() {
        partial = std::string();
        handlers.overlong();
        if (state == State::closed) { return; }
        state = State::draining;
        drainTimer.expires_after(drainTime);
        drainTimer.async_wait([self = shared_from_this()](error_code const& error) {
            if (!error) { self->end("line too long"); }
        });
        if (!flushing) { shutdownSending(); }
    }

    void send(std::string const& line) {
        if (state != State::open) { return; }
        auto const waiting = queued.size() + writing.size();
        if (waiting > 0 && waiting + line.size() >= limits.backlog) {
            end("does not read: " + std::to_string(waiting) + " bytes wait");
            return;
        }
        queued.append(line) += '\n';
        if (flushing) { return; }
        // Not at once: the answers to all lines of one read then leave in one write.
        flushing = true;
        boost::asio::post(socket.get_executor(), [self = shared_from_this()] { self->flush(); });
    }

    void flush() {
        if (state == State::closed) { return; }
        writing.swap(queued);
        boost::asio::async_write(
            socket, boost::asio::buffer(writing),
            [self = shared_from_this()](error_code const& error, std::size_t) { self->written(error); });
    }

    void written(error_code const& error) {
        clear(writing);
        if (error) {
            end(error.message());
        } else if (!queued.empty()) {
            flush();
        } else {
            flushing = false;
            if (state == State::draining) { shutdownSending(); }
        }
    }

    void shutdownSending() {
        error_code ignored;
        socket.shutdown(tcp::socket::shutdown_send, ignored);
    }

    void end(std::string const& reason) {
        if (state == State::closed) { return; }
        state = State::closed;
        error_code ignored;
        socket.close(ignored);
        drainTimer.cancel(ignored);
        queued = std::string();
        boost::asio::post(socket.get_executor(), [self = shared_from_this(), reason] {
            if (!self->abandoned && self->handlers.closed) { self->handlers.closed(reason); }
        });
    }

    tcp::socket socket;
    TcpLimits limits;
    boost::asio::steady_timer drainTimer;
    Endpoint remote;
    Handlers handlers;
    State state = State::open;
    bool abandoned = false; // nobody wants to hear of this connection any more
    bool flushing = false;  // `writing` is on its way or will be soon
    std::array<char, chunkSize> chunk{};
    std::string partial; // the line that is being read
    std::string queued;
    std::string writing;
};

TcpConnection::TcpConnection(TcpSocket&& socket, TcpLimits const& limits)
    : impl_(std::make_shared<Impl>(std::move(socket.socket), limits)) {}

TcpConnection::~TcpConnection() {
    if (!impl_) { return; }
    impl_->abandoned = true;
    impl_->end("abandoned");
}

void TcpConnection::start(Handlers handlers) {
    impl_->handlers = std::move(handlers);
    impl_->read();
}

void TcpConnection::send(std::string const& line) { impl_->send(line); }

void TcpConnection::close() { impl_->end("closed here"); }

TcpConnection::Endpoint const& TcpConnection::remote() const noexcept { return impl_->remote; }

} // namespace zorv
