// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/connectTcp.h"

#include "platform/libio/EventLoop.h"
#include "platform/libio/TcpSocket.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace zorv {

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;

class Attempt : public std::enable_shared_from_this<Attempt> {
public:
    Attempt(EventLoop& loop, TcpLimits const& limits, ConnectHandlers&& handlers)
        : loop_(loop),
          limits_(limits),
          handlers_(std::move(handlers)),
          resolver_(loop.context()),
          socket_(loop.context()) {}

    void start(std::string const& host, unsigned short port, std::chrono::milliseconds timeout) {
        // Pending operations own this object. If its own timer owned it too, that would be a cycle.
        timer_ = Timer(loop_, timeout, [weak = weak_from_this()] {
            if (auto const self = weak.lock()) { self->fail("timed out"); }
        });
        error_code noAddress;
        auto const address = boost::asio::ip::make_address(host, noAddress);
        if (!noAddress) {
            connect({tcp::endpoint(address, port)});
            return;
        }
        resolver_.async_resolve(
            host, std::to_string(port),
            [self = shared_from_this()](error_code const& error, tcp::resolver::results_type const& results) {
                if (error) { return self->fail(error.message()); }
                std::vector<tcp::endpoint> endpoints;
                for (auto const& entry : results) { endpoints.push_back(entry.endpoint()); }
                self->connect(endpoints);
            });
    }

private:
    void connect(std::vector<tcp::endpoint> const& endpoints) {
        if (!handlers_) { return; }
        endpoints_ = endpoints;
        boost::asio::async_connect(socket_, endpoints_,
                                   [self = shared_from_this()](error_code const& error, tcp::endpoint const&) {
                                       if (error) { return self->fail(error.message()); }
                                       TcpConnection connection(TcpSocket(std::move(self->socket_)), self->limits_);
                                       if (auto const handlers = self->finish()) {
                                           handlers->connected(std::move(connection));
                                       }
                                   });
    }

    void fail(std::string const& reason) {
        if (auto const handlers = finish()) { handlers->failed(reason); }
    }

    /// The handlers, the first time. Whatever is still under way then fails, and nobody is told of that.
    std::optional<ConnectHandlers> finish() {
        auto handlers = std::exchange(handlers_, std::nullopt);
        if (handlers) {
            timer_.cancel();
            resolver_.cancel();
            error_code ignored;
            socket_.close(ignored);
        }
        return handlers;
    }

    EventLoop& loop_;
    TcpLimits limits_;
    std::optional<ConnectHandlers> handlers_; // none once the outcome was told
    tcp::resolver resolver_;
    tcp::socket socket_;
    std::vector<tcp::endpoint> endpoints_;
    Timer timer_;
};

} // namespace

void connectTcp(EventLoop& loop, std::string const& host, unsigned short port, std::chrono::milliseconds timeout,
                TcpLimits const& limits, ConnectHandlers handlers) {
    std::make_shared<Attempt>(loop, limits, std::move(handlers))->start(host, port, timeout);
}

} // namespace zorv
