// SPDX-License-Identifier: Apache-2.0
// Sends every line back to where it came from, by the daemon's own connections: what the daemon could do at best, if
// messages cost nothing.

#include "platform/libio/EventLoop.h"
#include "platform/libio/TcpListener.h"

#include <boost/asio/ip/tcp.hpp>

#include <csignal>
#include <iostream>
#include <list>

int main() {
    zorv::EventLoop loop;
    zorv::SignalWatch const signals(loop, {SIGINT, SIGTERM}, [&loop](int) { loop.stop(); });
    std::list<zorv::TcpConnection> connections;
    zorv::TcpListener const listener(loop, {boost::asio::ip::address_v4::loopback(), 0}, zorv::TcpLimits(),
                                     [&](zorv::TcpConnection accepted) {
                                         connections.push_back(std::move(accepted));
                                         auto const self = std::prev(connections.end());
                                         zorv::TcpConnection::Handlers handlers;
                                         handlers.line = [self](std::string const& line) { self->send(line); };
                                         handlers.overlong = [] {};
                                         handlers.closed = [&, self](std::string const&) { connections.erase(self); };
                                         self->start(std::move(handlers));
                                     });
    std::cout << "listening on " << listener.local() << std::endl;
    loop.run();
    connections.clear();
    return 0;
}
