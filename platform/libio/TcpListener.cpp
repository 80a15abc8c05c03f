#include "platform/libio/TcpListener.h"

#include "platform/libio/EventLoop.h"
#include "platform/libio/TcpSocket.h"
#include "platform/libzorvlogger/Logger.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/lexical_cast.hpp>

#include <chrono>
#include <stdexcept>
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
        } catch (boost::system::system_error const& error) {
            throw std::runtime_error("cannot listen on " + boost::lexical_cast<std::string>(local) + ": " +
                                     error.code().message());
        }
    }

    void accept() {
        acceptor.async_accept([self = shared_from_this()](error_code const& error, tcp::socket socket) {
            if (self->closed) { return; }
            if (error == boost::asio::error::connection_aborted) {
                self->accept();
            } else if (error) {
                self->retry(error);
            } else {
                self->failing = false;
                self->accepted(TcpConnection(TcpSocket{std::move(socket)}, self->limits));
                if (!self->closed) { self->accept(); }
            }
        });
    }

    /// The connection that could not be accepted, for want of a file descriptor say, stays ready: asking again at once
    /// would be a busy loop.
    void retry(error_code const& error) {
        if (!failing) {
            Logger::log(LogLevel::warn, "TcpListener: cannot accept connections: " + error.message(),
                        BOOST_CURRENT_LOCATION);
        }
        failing = true;
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
    }

    tcp::acceptor acceptor;
    boost::asio::steady_timer retryTimer;
    TcpLimits limits;
    Accepted accepted;
    bool failing = false; // has been logged
    bool closed = false;
};

TcpListener::TcpListener(EventLoop& loop, Endpoint const& local, TcpLimits const& limits, Accepted accepted)
    : impl_(std::make_shared<Impl>(loop.context(), local, limits, std::move(accepted))) {
    impl_->accept();
}

TcpListener::~TcpListener() { impl_->close(); }

TcpListener::Endpoint TcpListener::local() const { return impl_->acceptor.local_endpoint(); }

} // namespace zorv
