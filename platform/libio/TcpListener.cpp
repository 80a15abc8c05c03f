// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/TcpListener.h"

#include "platform/libio/EventLoop.h"
#include "platform/libio/TcpBudget.h"
#include "platform/libio/TcpSocket.h"
#include "platform/libzorvlogger/Logger.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/lexical_cast.hpp>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

namespace zorv {

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;

constexpr auto retryTime = std::chrono::milliseconds(200);

} // namespace

struct TcpListener::Impl : std::enable_shared_from_this<TcpListener::Impl> {
    Impl(boost::asio::io_context& context, Endpoint const& local, TcpLimits const& theLimits, Accepted&& theAccepted)
        : acceptor(context), retryTimer(context), limits(theLimits), accepted(std::move(theAccepted)) {
        try {
            acceptor.open(local.protocol());
            acceptor.set_option(tcp::acceptor::reuse_address(true));
            acceptor.bind(local);
            acceptor.listen();
            acceptor.native_non_blocking(true);
        } catch (boost::system::system_error const& error) {
            throw std::runtime_error("cannot listen on " + boost::lexical_cast<std::string>(local) + ": " +
                                     error.code().message());
        }
    }

    void accept() {
        acceptor.async_accept([self = shared_from_this()](error_code const& error, tcp::socket socket) {
            if (self->closed) { return; }
            if (isExhaustion(error) && self->dropNewcomer()) {
                self->refuse(error.message());
                self->accept();
            } else if (error && error != boost::asio::error::connection_aborted) {
                self->refuse(error.message());
                self->retryLater();
            } else {
                if (!error) { self->take(std::move(socket)); }
                if (!self->closed) { self->accept(); }
            }
        });
    }

    void take(tcp::socket socket) {
        if (limits.budget && limits.budget->full()) { return refuse("too many clients"); }
        if (refused > 0) { log("accepts connections again, " + std::to_string(refused) + " were refused"); }
        refused = 0;
        try {
            accepted(TcpConnection(TcpSocket{std::move(socket)}, limits));
        } catch (std::bad_alloc const&) { refuse("no memory left for them"); }
    }

    static bool isExhaustion(error_code const& error) {
        return error == boost::system::errc::too_many_files_open ||
               error == boost::system::errc::too_many_files_open_in_system;
    }

    /// Accepts the first waiting connection with the spare descriptor, and closes it. Otherwise it would wait for ever
    /// and be reported again and again. False if that fails.
    bool dropNewcomer() {
        if (spare < 0) { return false; }
        ::close(spare);
        auto const newcomer = ::accept(acceptor.native_handle(), nullptr, nullptr);
        if (newcomer >= 0) { ::close(newcomer); }
        spare = openSpare();
        return newcomer >= 0;
    }

    static int openSpare() { return ::open("/dev/null", O_RDONLY | O_CLOEXEC); }

    /// Logs the first of a series of connections that cannot be served, and counts them.
    void refuse(std::string const& why) {
        if (refused == 0) { log("cannot accept connections: " + why); }
        ++refused;
    }

    static void log(std::string const& text) {
        Logger::log(LogLevel::warn, "TcpListener: " + text, BOOST_CURRENT_LOCATION);
    }

    /// The connection that could not be accepted stays ready: asking again at once would be a busy loop.
    void retryLater() {
        if (spare < 0) { spare = openSpare(); }
        retryTimer.expires_after(retryTime);
        retryTimer.async_wait([self = shared_from_this()](error_code const& cancelled) {
            if (!cancelled && !self->closed) { self->accept(); }
        });
    }

    void close() {
        closed = true;
        error_code ignored;
        acceptor.close(ignored);
        retryTimer.cancel(ignored);
        if (spare >= 0) { ::close(std::exchange(spare, -1)); }
    }

    tcp::acceptor acceptor;
    boost::asio::steady_timer retryTimer;
    TcpLimits limits;
    Accepted accepted;
    std::size_t refused = 0; // connections of the series that is going on
    int spare = openSpare(); // a descriptor in reserve, for when there are no others
    bool closed = false;
};

TcpListener::TcpListener(EventLoop& loop, Endpoint const& local, TcpLimits const& limits, Accepted accepted)
    : impl_(std::make_shared<Impl>(loop.context(), local, limits, std::move(accepted))) {
    impl_->accept();
}

TcpListener::~TcpListener() { impl_->close(); }

TcpListener::Endpoint TcpListener::local() const { return impl_->acceptor.local_endpoint(); }

} // namespace zorv
