// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/connectTcp.h"

#include "platform/libio/EventLoop.h"
#include "platform/libio/TcpSocket.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>

#include <memory>
#include <utility>
#include <vector>

namespace zorv {

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;

class Attempt : public std::enable_shared_from_this<Attempt> {
public:
    using Done = std::function<void(std::optional<TcpConnection>, std::string const&)>;

    Attempt(EventLoop& loop, TcpLimits const& limits, Done&& done)
        : loop_(loop), limits_(limits), done_(std::move(done)), resolver_(loop.context()), socket_(loop.context()) {}

    void start(std::string const& host, unsigned short port, std::chrono::milliseconds timeout) {
        // What is under way keeps this object; a timer of its own that kept it too would make a circle.
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
        if (!done_) { return; }
        endpoints_ = endpoints;
        boost::asio::async_connect(
            socket_, endpoints_, [self = shared_from_this()](error_code const& error, tcp::endpoint const&) {
                if (error) { return self->fail(error.message()); }
                self->finish(TcpConnection(TcpSocket{std::move(self->socket_)}, self->limits_), "");
            });
    }

    void fail(std::string const& reason) { finish(std::nullopt, reason); }

    void finish(std::optional<TcpConnection> connection, std::string const& reason) {
        // Giving up makes what is still under way fail as well, and that is told to nobody.
        auto const done = std::exchange(done_, nullptr);
        if (!done) { return; }
        timer_.cancel();
        resolver_.cancel();
        error_code ignored;
        socket_.close(ignored);
        done(std::move(connection), reason);
    }

    EventLoop& loop_;
    TcpLimits limits_;
    Done done_;
    tcp::resolver resolver_;
    tcp::socket socket_;
    std::vector<tcp::endpoint> endpoints_;
    Timer timer_;
};

} // namespace

void connectTcp(EventLoop& loop, std::string const& host, unsigned short port, std::chrono::milliseconds timeout,
                TcpLimits const& limits, std::function<void(std::optional<TcpConnection>, std::string const&)> done) {
    std::make_shared<Attempt>(loop, limits, std::move(done))->start(host, port, timeout);
}

} // namespace zorv
