// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/TcpConnection.h"

#include "platform/libio/TcpBudget.h"
#include "platform/libio/TcpSocket.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>

#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <deque>
#include <new>
#include <string_view>
#include <utility>

namespace zorv {

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;

constexpr std::size_t chunkSize = 16384;
constexpr std::size_t keptCapacity = 65536; // a buffer that grew beyond this is given back after its line
constexpr std::size_t blockSize = 65536;    // short lines leave together, up to so many bytes
constexpr int linesPerTurn = 8;             // lines of one peer, before the others have their turn
constexpr std::size_t heavyLine = 65536;    // of lines of this size or more, only one is handled per turn

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
        finishing, // what is queued still goes out, what arrives is thrown away
        closed
    };

    Impl(tcp::socket&& theSocket, TcpLimits const& theLimits)
        : socket(std::move(theSocket)),
          limits(theLimits),
          share(limits.budget, [this] { end("holds the most memory of all"); }),
          farewell(socket.get_executor()) {
        setOptions(socket);
        error_code ignored;
        remote = socket.remote_endpoint(ignored);
    }

    // ---- memory

    /// Does the work; if memory runs out, only this peer is disconnected.
    template <class Work> void guarded(Work const& work) noexcept {
        try {
            work();
        } catch (std::bad_alloc const&) {
            partial = std::string(); // so that there is some for the goodbye
            end("no memory left for it");
        }
    }

    /// Counts what this connection holds; false if that is too much, and the connection has ended.
    bool hold(std::size_t lineCapacity) {
        if (state == State::closed) { return false; }
        if (share.hold(lineCapacity + waiting + occupied)) { return true; }
        end("holds the most memory of all");
        return false;
    }

    // ---- what arrives

    void read() {
        socket.async_read_some(boost::asio::buffer(chunk),
                               [self = shared_from_this()](error_code const& error, std::size_t size) {
                                   self->guarded([&] { self->received(error, size); });
                               });
    }

    void received(error_code const& error, std::size_t size) {
        if (error == boost::asio::error::eof) {
            endInput();
        } else if (error) {
            end(error.message());
        } else {
            unread = std::string_view(chunk.data(), size);
            takeLines();
        }
    }

    void endInput() {
        inputEnded = true;
        if (state == State::open && handlers.inputEnded) {
            handlers.inputEnded();
            watchForReset();
        } else if (state == State::open || !flushing) {
            end(state == State::open ? "closed by the peer" : reason);
        }
    }

    /// Reads nothing any more, but still notices by an error of the socket that the peer is gone.
    void watchForReset() {
        if (state == State::closed) { return; }
        socket.async_wait(tcp::socket::wait_error, [self = shared_from_this()](error_code const& error) {
            if (!error) {
                self->guarded([&] { self->end("closed by the peer"); });
            }
        });
    }

    /// Hands on the lines of what was read, until this peer's turn is over.
    void takeLines() {
        for (int lines = 0; state == State::open && !unread.empty();) {
            auto const lineEnd = unread.find('\n');
            auto const piece = unread.substr(0, lineEnd);
            // One more than the limit may be the carriage return of the line's end.
            if (partial.size() + piece.size() > limits.line + 1) { return passLimit(); }
            if (!append(piece)) { return; }
            if (lineEnd == std::string_view::npos) { break; }
            unread.remove_prefix(lineEnd + 1);
            if (!partial.empty() && partial.back() == '\r') { partial.pop_back(); }
            if (partial.size() > limits.line) { return passLimit(); }
            if (partial.size() >= heavyLine && limits.budget) {
                return limits.budget->queueHeavyWork([self = shared_from_this()] { self->goOn(true); });
            }
            handOn();
            if (++lines == linesPerTurn && !unread.empty()) {
                return boost::asio::post(socket.get_executor(), [self = shared_from_this()] { self->goOn(false); });
            }
        }
        unread = {};
        if (state != State::closed) { read(); }
    }

    /// Goes on where takeLines() stopped: before the line that it could not hand on, or after one.
    void goOn(bool withLine) {
        guarded([&] {
            if (withLine && state == State::open) { handOn(); }
            takeLines();
        });
    }

    void handOn() {
        handlers.line(partial);
        clear(partial);
        hold(partial.capacity());
    }

    /// Lengthens the line that is being read; false if there is no memory for it, and the connection has ended.
    bool append(std::string_view piece) {
        auto const size = partial.size() + piece.size();
        if (size > partial.capacity()) {
            auto const capacity = std::min(std::max(size, 2 * partial.capacity()), limits.line + 1);
            if (!hold(partial.capacity() + capacity)) { return false; }
            std::string longer; // a string that grows by itself may take twice what is counted here
            longer.reserve(capacity);
            longer.append(partial);
            partial = std::move(longer);
            hold(partial.capacity());
        }
        partial.append(piece);
        return true;
    }

    void passLimit() {
        partial = std::string();
        unread = {};
        handlers.overlong();
        finish("line too long");
        if (state != State::closed) { read(); }
    }

    // ---- what is sent

    void send(std::string const& line) {
        if (state != State::open) { return; }
        if (waiting + line.size() + 1 > limits.backlog) {
            end("does not read: " + std::to_string(waiting) + " bytes wait");
            return;
        }
        guarded([&] { enqueue(line); });
    }

    void enqueue(std::string const& line) {
        waiting += line.size() + 1;
        if (!hold(partial.capacity())) { return; }
        if (queued.empty() || queued.back().size() + line.size() >= blockSize) {
            bool const first = queued.empty();
            queued.emplace_back().reserve(first ? line.size() + 1 : std::max(line.size() + 1, blockSize));
        }
        queued.back().append(line) += '\n';
        if (flushing) { return; }
        // Later, so that the answers to all lines of one turn leave in one write.
        flushing = true;
        boost::asio::post(socket.get_executor(),
                          [self = shared_from_this()] { self->guarded([&] { self->flush(); }); });
    }

    void flush() {
        if (state == State::closed) { return; }
        writing = std::move(queued.front());
        queued.pop_front();
        boost::asio::async_write(socket, boost::asio::buffer(writing),
                                 [self = shared_from_this()](error_code const& error, std::size_t) {
                                     self->guarded([&] { self->written(error); });
                                 });
    }

    void written(error_code const& error) {
        waiting -= std::min(waiting, writing.size());
        writing = std::string();
        if (error) {
            end(error.message());
        } else if (!queued.empty()) {
            flush();
        } else {
            flushing = false;
            if (state == State::finishing) { sayGoodbye(); }
        }
        hold(partial.capacity());
    }

    // ---- the end

    void finish(std::string const& theReason) {
        if (state != State::open) { return; }
        state = State::finishing;
        reason = theReason;
        // Closing at once would reset the connection while the peer still sends, and the peer would not receive the
        // reason.
        farewell.expires_after(limits.farewell);
        farewell.async_wait([self = shared_from_this()](error_code const& error) {
            if (!error) { self->end(self->reason); }
        });
        if (!flushing) { sayGoodbye(); }
    }

    /// All that was queued is on its way.
    void sayGoodbye() {
        if (inputEnded) { return end(reason); }
        error_code ignored;
        socket.shutdown(tcp::socket::shutdown_send, ignored);
    }

    void end(std::string const& theReason) {
        if (state == State::closed) { return; }
        state = State::closed;
        error_code ignored;
        socket.close(ignored);
        farewell.cancel(ignored);
        queued.clear();
        unread = {};
        share.hold(0);
        boost::asio::post(socket.get_executor(), [self = shared_from_this(), theReason] {
            self->partial = std::string();
            if (!self->abandoned && self->handlers.closed) { self->handlers.closed(theReason); }
        });
    }

    tcp::socket socket;
    TcpLimits limits;
    TcpBudget::Share share;
    boost::asio::steady_timer farewell;
    Endpoint remote;
    Handlers handlers;
    State state = State::open;
    std::string reason;      // why a connection that is finishing ends
    bool abandoned = false;  // no handler is called any more
    bool inputEnded = false; // the peer sends nothing any more
    bool flushing = false;   // `writing` is on its way or will be soon
    std::array<char, chunkSize> chunk{};
    std::string_view unread; // of the chunk
    std::string partial;     // the line that is being read
    std::deque<std::string> queued;
    std::string writing;
    std::size_t waiting = 0;  // bytes in `queued` and `writing`
    std::size_t occupied = 0; // bytes that others keep for this peer
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
    impl_->guarded([this] { impl_->read(); });
}

void TcpConnection::send(std::string const& line) { impl_->send(line); }

std::size_t TcpConnection::longestLine() const noexcept {
    auto const& limits = impl_->limits;
    return std::min(limits.line, limits.backlog - std::min<std::size_t>(limits.backlog, 1));
}

void TcpConnection::occupy(std::size_t bytes) {
    impl_->occupied = bytes;
    impl_->hold(impl_->partial.capacity());
}

void TcpConnection::close(std::string const& reason) { impl_->end(reason); }

void TcpConnection::finish(std::string const& reason) { impl_->finish(reason); }

TcpConnection::Endpoint const& TcpConnection::remote() const noexcept { return impl_->remote; }

} // namespace zorv
