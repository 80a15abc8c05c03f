// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libio/TcpBudget.h"
#include "platform/libio/TcpSocket.h"
#include "platform/libio/insist.h"
#include "platform/libzorvlogger/Logger.h"

#include <boost/asio/basic_socket_acceptor.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <utility>

namespace zorv {

/// Accepts connections of a protocol on an acceptor that listens.
template <class Protocol> class StreamAcceptor : public std::enable_shared_from_this<StreamAcceptor<Protocol>> {
public:
    using Acceptor = boost::asio::basic_socket_acceptor<Protocol>;
    using Accepted = std::function<void(TcpConnection connection)>;

    /// `name` is that of the listener, for the log.
    StreamAcceptor(std::string name, Acceptor&& acceptor, TcpLimits const& limits, Accepted&& accepted)
        : name_(std::move(name)),
          acceptor_(std::move(acceptor)),
          retryTimer_(acceptor_.get_executor()),
          limits_(limits),
          accepted_(std::move(accepted)) {
        acceptor_.non_blocking(true);
    }

    ~StreamAcceptor() = default;
    StreamAcceptor(StreamAcceptor const&) = delete;
    StreamAcceptor& operator=(StreamAcceptor const&) = delete;

    void accept() {
        insist([this] {
            acceptor_.async_wait(Acceptor::wait_read,
                                 [self = this->shared_from_this()](boost::system::error_code const& error) {
                                     if (!self->closed_) { self->onReady(error); }
                                 });
        });
    }

    void close() {
        closed_ = true;
        boost::system::error_code ignored;
        acceptor_.close(ignored);
        retryTimer_.cancel(ignored);
        if (spare_ >= 0) { ::close(std::exchange(spare_, -1)); }
    }

    Acceptor const& acceptor() const noexcept { return acceptor_; }

private:
    static constexpr auto retryTime = std::chrono::milliseconds(200);

    /// Not by async_accept(): where that finds no memory for the socket, nobody hears of it, and nobody accepts any more.
    void onReady(boost::system::error_code error) {
        try {
            typename Protocol::socket socket(acceptor_.get_executor());
            if (!error) { acceptor_.accept(socket, error); }
            if (error == boost::asio::error::would_block) { return accept(); }
            onAccepted(error, std::move(socket));
        } catch (std::bad_alloc const&) {
            refuse([] { return "no memory left for them"; });
            accept();
        }
    }

    void onAccepted(boost::system::error_code const& error, typename Protocol::socket&& socket) {
        if (isExhaustion(error) && dropNewcomer()) {
            refuse([&] { return error.message(); });
            accept();
        } else if (error && error != boost::asio::error::connection_aborted) {
            refuse([&] { return error.message(); });
            retryLater();
        } else {
            if (!error) { take(std::move(socket)); }
            if (!closed_) { accept(); }
        }
    }

    void take(typename Protocol::socket socket) {
        if (limits_.budget && limits_.budget->full()) {
            return refuse([] { return "too many clients"; });
        }
        if (refused_ > 0) {
            ifMemoryAllows([&] { log("accepts connections again, " + std::to_string(refused_) + " were refused"); });
        }
        refused_ = 0;
        try {
            accepted_(TcpConnection(TcpSocket(std::move(socket)), limits_));
        } catch (std::bad_alloc const&) {
            refuse([] { return "no memory left for them"; });
        }
    }

    static bool isExhaustion(boost::system::error_code const& error) {
        return error == boost::system::errc::too_many_files_open ||
               error == boost::system::errc::too_many_files_open_in_system;
    }

    /// Accepts the first waiting connection with the spare descriptor, and closes it. Otherwise it would wait for ever
    /// and be reported again and again. False if that fails.
    bool dropNewcomer() {
        if (spare_ < 0) { return false; }
        ::close(spare_);
        auto const newcomer = ::accept(acceptor_.native_handle(), nullptr, nullptr);
        if (newcomer >= 0) { ::close(newcomer); }
        spare_ = openSpare();
        return newcomer >= 0;
    }

    static int openSpare() { return ::open("/dev/null", O_RDONLY | O_CLOEXEC); }

    /// Logs the first of a series of connections that cannot be served, and counts them.
    template <class Why> void refuse(Why const& why) {
        if (refused_ == 0) {
            ifMemoryAllows([&] { log(std::string("cannot accept connections: ") + why()); });
        }
        ++refused_;
    }

    void log(std::string const& text) const {
        Logger::log(LogLevel::warn, name_ + ": " + text, BOOST_CURRENT_LOCATION);
    }

    /// The connection that could not be accepted stays ready: asking again at once would be a busy loop.
    void retryLater() {
        if (spare_ < 0) { spare_ = openSpare(); }
        retryTimer_.expires_after(retryTime);
        insist([this] {
            retryTimer_.async_wait([self = this->shared_from_this()](boost::system::error_code const& cancelled) {
                if (!cancelled && !self->closed_) { self->accept(); }
            });
        });
    }

    std::string name_;
    Acceptor acceptor_;
    boost::asio::steady_timer retryTimer_;
    TcpLimits limits_;
    Accepted accepted_;
    std::size_t refused_ = 0; // connections of the series that is going on
    int spare_ = openSpare(); // a descriptor in reserve, for when there are no others
    bool closed_ = false;
};

} // namespace zorv
