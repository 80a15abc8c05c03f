// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/UnixListener.h"

#include "platform/libio/EventLoop.h"
#include "platform/libio/StreamAcceptorImpl.h"

#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace zorv {

namespace {

using local = boost::asio::local::stream_protocol;
using boost::system::error_code;

constexpr mode_t ownerAndGroup = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP;

[[noreturn]] void refuse(std::string const& path, std::string const& reason) {
    throw std::runtime_error("cannot listen on unix:" + path + ": " + reason);
}

/// Removes the socket of a process that is gone; anything else stays where it is.
void removeLeftover(boost::asio::io_context& context, std::string const& path) {
    struct stat found = {};
    if (::lstat(path.c_str(), &found) != 0) { return; }
    if (!S_ISSOCK(found.st_mode)) { refuse(path, "something else is there"); }
    local::socket probe(context);
    error_code error;
    probe.connect(local::endpoint(path), error);
    if (error != boost::asio::error::connection_refused) { refuse(path, error ? error.message() : "in use"); }
    ::unlink(path.c_str());
}

local::acceptor listenOn(boost::asio::io_context& context, std::string const& path) {
    if (path.empty() || path.size() >= sizeof(sockaddr_un::sun_path)) {
        refuse(path, "a path of 1 to " + std::to_string(sizeof(sockaddr_un::sun_path) - 1) + " bytes is needed");
    }
    removeLeftover(context, path);
    try {
        local::acceptor acceptor(context);
        acceptor.open();
        // Nobody else can connect before the mode is set.
        auto const old = ::umask(S_IRWXO);
        error_code error;
        acceptor.bind(local::endpoint(path), error);
        ::umask(old);
        if (error) { refuse(path, error.message()); }
        if (::chmod(path.c_str(), ownerAndGroup) != 0) { refuse(path, "its mode cannot be set"); }
        acceptor.listen();
        acceptor.native_non_blocking(true);
        return acceptor;
    } catch (boost::system::system_error const& error) { refuse(path, error.code().message()); }
}

} // namespace

struct UnixListener::Impl : StreamAcceptor<local> {
    using StreamAcceptor::StreamAcceptor;
};

UnixListener::UnixListener(EventLoop& loop, std::string const& path, TcpLimits const& limits, Accepted accepted)
    : path_(path),
      impl_(std::make_shared<Impl>("UnixListener", listenOn(loop.context(), path), limits, std::move(accepted))) {
    impl_->accept();
}

UnixListener::~UnixListener() {
    impl_->close();
    ::unlink(path_.c_str());
}

} // namespace zorv
