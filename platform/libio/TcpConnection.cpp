// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/TcpConnection.h"

#include "platform/libio/TcpBudget.h"
#include "platform/libio/TcpSocket.h"
#include "platform/libio/insist.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>

#include <algorithm>
#include <array>
#include <deque>
#include <new>
#include <string_view>
#include <utility>

namespace zorv {

namespace {

using boost::system::error_code;

constexpr std::size_t chunkSize = 16384;
constexpr std::size_t keptCapacity = 65536; // a buffer that grew beyond this is given back after its line
constexpr std::size_t blockSize = 65536;    // short lines are gathered up to so many bytes, and no turn sends more
constexpr int linesPerTurn = 8;             // lines of one peer, before the others have their turn
constexpr std::size_t heavyLine = 65536;    // of lines of this size or more, only one is handled per turn

void clear(std::string& buffer) {
    if (buffer.capacity() > keptCapacity) {
        buffer = std::string();
    } else {
        buffer.clear();
    }
}

/// The line with its end. A string that grows by itself may take twice what it needs.
std::string ended(std::string&& line) {
    if (line.size() == line.capacity()) {
        std::string longer;
        longer.reserve(line.size() + 1);
        line = std::move(longer.append(line));
    }
    line += '\n';
    return std::move(line);
}

} // namespace

struct TcpConnection::Impl : std::enable_shared_from_this<TcpConnection::Impl> {
    enum class State {
        open,
        finishing, // what is queued still goes out, what arrives is thrown away
        closed
    };

    Impl(TcpSocket&& theSocket, TcpLimits const& theLimits)
        : socket(std::move(theSocket.socket)),
          limits(theLimits),
          share(limits.budget, [this] { end("holds the most memory of all"); }),
          farewell(socket.get_executor()),
          remote(theSocket.remote) {
        error_code ignored; // a socket that is broken says so when it is read
        socket.non_blocking(true, ignored);
    }

    // ---- memory

    /// Does the work; if memory runs out, only this peer is disconnected.
    template <class Work> void guarded(Work const& work) noexcept {
        try {
            work();
        } catch (std::bad_alloc const&) {
            partial = std::string(); // so that there is some for the goodbye
            insist([this] { end("no memory left for it"); });
        }
    }

    /// Counts what this connection holds; false if that is too much, and the connection has ended.
    bool hold(std::size_t lineCapacity) {
        if (state == State::closed) { return false; }
        if (share.hold(lineCapacity + waiting + sent + occupied)) { return true; }
        end("holds the most memory of all");
        return false;
    }

    /// Does the work later, so that the others have their turn before.
    template <class Work> void later(Work const& work) {
        boost::asio::post(socket.get_executor(),
                          [self = shared_from_this(), work] { self->guarded([&] { work(*self); }); });
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
        } else if (state == State::open || queued.empty()) {
            end(state == State::open ? std::string(closedByPeer) : reason);
        }
    }

    /// Reads nothing any more, but still notices by an error of the socket that the peer is gone.
    void watchForReset() {
        if (state == State::closed) { return; }
        socket.async_wait(boost::asio::socket_base::wait_error, [self = shared_from_this()](error_code const& error) {
            if (!error) {
                self->guarded([&] { self->end(closedByPeer); });
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
                return later([](Impl& self) { self.goOn(false); });
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

    void send(std::string&& line) {
        if (state != State::open) { return; }
        if (waiting + line.size() + 1 > limits.backlog) {
            end("does not read: " + std::to_string(waiting) + " bytes wait");
            return;
        }
        guarded([&] { enqueue(ended(std::move(line))); });
    }

    /// A line becomes the buffer that is sent; short ones are gathered in one.
    void enqueue(std::string&& line) {
        waiting += line.size();
        if (!hold(partial.capacity())) { return; }
        if (queued.empty() || queued.back().size() + line.size() > blockSize) {
            queued.push_back(std::move(line));
        } else {
            queued.back().append(line);
        }
        if (!flushing) { flushLater(); }
    }

    /// So that the answers to all lines of one turn leave in one write; and so that those of all peers leave together:
    /// with each write alone, a peer on another processor would have to be woken for each.
    void flushLater() {
        flushing = true;
        later([](Impl& self) { self.flush(); });
    }

    /// Sends what a turn may send.
    void flush() {
        if (state == State::closed) { return; }
        error_code error;
        auto const& block = queued.front();
        auto const size = std::min(block.size() - sent, blockSize);
        auto const taken = socket.write_some(boost::asio::buffer(block.data() + sent, size), error);
        if (error == boost::asio::error::would_block) {
            flushWhenWritable();
        } else if (error == boost::asio::error::interrupted) {
            flushLater();
        } else if (error) {
            end(error.message());
        } else {
            written(taken);
        }
    }

    void flushWhenWritable() {
        socket.async_wait(boost::asio::socket_base::wait_write,
                          [self = shared_from_this()](error_code const&) { self->guarded([&] { self->flush(); }); });
    }

    void written(std::size_t size) {
        waiting -= size;
        sent += size;
        if (sent == queued.front().size()) {
            queued.pop_front();
            sent = 0;
        }
        flushing = false;
        if (!queued.empty()) {
            flushLater();
        } else if (state == State::finishing) {
            sayGoodbye();
        }
        hold(partial.capacity());
    }

    // ---- the end

    void finish(std::string const& theReason) {
        if (state != State::open) { return; }
        guarded([&] {
            state = State::finishing;
            reason = theReason;
            // Closing at once would reset the connection while the peer still sends, and the peer would not receive the
            // reason.
            farewell.expires_after(limits.farewell);
            farewell.async_wait([self = shared_from_this()](error_code const& error) {
                if (!error) { self->end(self->reason); }
            });
            if (queued.empty()) { sayGoodbye(); }
        });
    }

    /// All that was queued is on its way.
    void sayGoodbye() {
        if (inputEnded) { return end(reason); }
        error_code ignored;
        socket.shutdown(boost::asio::socket_base::shutdown_send, ignored);
    }

    void end(std::string const& theReason) {
        if (state == State::closed) { return; }
        state = State::closed;
        error_code ignored;
        socket.close(ignored);
        farewell.cancel(ignored);
        queued.clear();
        waiting = sent = 0;
        unread = {};
        share.hold(0);
        insist([&] { // or nobody would hear of the end
            boost::asio::post(socket.get_executor(), [self = shared_from_this(), theReason] {
                self->partial = std::string();
                if (!self->abandoned && self->handlers.closed) { self->handlers.closed(theReason); }
            });
        });
    }

    boost::asio::generic::stream_protocol::socket socket;
    TcpLimits limits;
    TcpBudget::Share share;
    boost::asio::steady_timer farewell;
    Endpoint remote;
    Handlers handlers;
    State state = State::open;
    std::string reason;      // why a connection that is finishing ends
    bool abandoned = false;  // no handler is called any more
    bool inputEnded = false; // the peer sends nothing any more
    bool flushing = false;   // flush() will be called
    std::array<char, chunkSize> chunk{};
    std::string_view unread; // of the chunk
    std::string partial;     // the line that is being read
    std::deque<std::string> queued;
    std::size_t sent = 0;     // of the first of them, bytes
    std::size_t waiting = 0;  // bytes in `queued` that are not sent yet
    std::size_t occupied = 0; // bytes that others keep for this peer
};

TcpConnection::TcpConnection(TcpSocket&& socket, TcpLimits const& limits)
    : impl_(std::make_shared<Impl>(std::move(socket), limits)) {}

TcpConnection::~TcpConnection() {
    if (!impl_) { return; }
    impl_->abandoned = true;
    impl_->end("abandoned");
}

void TcpConnection::start(Handlers handlers) {
    impl_->handlers = std::move(handlers);
    impl_->guarded([this] { impl_->read(); });
}

void TcpConnection::send(std::string line) { impl_->send(std::move(line)); }

std::size_t TcpConnection::longestLine() const noexcept {
    auto const& limits = impl_->limits;
    return std::min(limits.line, limits.backlog - std::min<std::size_t>(limits.backlog, 1));
}

std::size_t TcpConnection::waiting() const noexcept { return impl_->waiting; }

void TcpConnection::occupy(std::size_t bytes) {
    impl_->occupied = bytes;
    impl_->hold(impl_->partial.capacity());
}

void TcpConnection::close(std::string const& reason) { impl_->end(reason); }

void TcpConnection::finish(std::string const& reason) { impl_->finish(reason); }

TcpConnection::Endpoint const& TcpConnection::remote() const noexcept { return impl_->remote; }

} // namespace zorv
