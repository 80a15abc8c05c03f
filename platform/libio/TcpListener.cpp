// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/TcpListener.h"

#include "platform/libio/EventLoop.h"
#include "platform/libio/StreamAcceptorImpl.h"

#include <boost/lexical_cast.hpp>

#include <stdexcept>
#include <string>
#include <utility>

namespace zorv {

namespace {

using boost::asio::ip::tcp;

tcp::acceptor listenOn(boost::asio::io_context& context, tcp::endpoint const& local) {
    try {
        tcp::acceptor acceptor(context);
        acceptor.open(local.protocol());
        acceptor.set_option(tcp::acceptor::reuse_address(true));
        acceptor.bind(local);
        acceptor.listen();
        acceptor.native_non_blocking(true);
        return acceptor;
    } catch (boost::system::system_error const& error) {
        throw std::runtime_error("cannot listen on " + boost::lexical_cast<std::string>(local) + ": " +
                                 error.code().message());
    }
}

} // namespace

struct TcpListener::Impl : StreamAcceptor<tcp> {
    using StreamAcceptor::StreamAcceptor;
};

TcpListener::TcpListener(EventLoop& loop, Endpoint const& local, TcpLimits const& limits, Accepted accepted)
    : impl_(std::make_shared<Impl>("TcpListener", listenOn(loop.context(), local), limits, std::move(accepted))) {
    impl_->accept();
}

TcpListener::~TcpListener() { impl_->close(); }

TcpListener::Endpoint TcpListener::local() const { return impl_->acceptor().local_endpoint(); }

} // namespace zorv
