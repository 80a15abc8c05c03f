// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/DescriptorStreamImpl.h"

#include "platform/libio/EventLoop.h"
#include "platform/libio/insist.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>

#include <termios.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace zorv {

namespace {

using boost::system::error_code;

/// A device that was unplugged ends in one of several ways, which tell a reader nothing.
std::string reasonOf(error_code const& error) {
    bool const isGone =
        error == boost::asio::error::eof || error.value() == EIO || error.value() == ENODEV || error.value() == ENXIO;
    return isGone ? "the device is gone" : error.message();
}

} // namespace

DescriptorStream::DescriptorStream(EventLoop& loop, int descriptor, WhenFull whenFull, std::size_t room)
    : descriptor_(loop.context(), descriptor), whenFull_(whenFull), room_(room) {}

void DescriptorStream::makeRaw() {
    auto const terminal = descriptor_.native_handle();
    termios settings{};
    if (::tcgetattr(terminal, &settings) != 0) { throw std::system_error(errno, std::generic_category()); }
    ::cfmakeraw(&settings);
    settings.c_cflag |= CREAD | CLOCAL;
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    if (::tcsetattr(terminal, TCSANOW, &settings) != 0) { throw std::system_error(errno, std::generic_category()); }
}

void DescriptorStream::start(PortHandlers handlers) {
    handlers_ = std::move(handlers);
    if (isOpen_) { read(); }
}

void DescriptorStream::read() {
    insist([this] {
        descriptor_.async_read_some(
            boost::asio::buffer(chunk_),
            [self = shared_from_this()](error_code const& error, std::size_t size) { self->received(error, size); });
    });
}

void DescriptorStream::received(error_code const& error, std::size_t size) {
    if (!isOpen_) { return; }
    if (error) { return close(reasonOf(error)); }
    // What there is no memory for is lost as it is on a bad line, and the next is read.
    ifMemoryAllows([&] {
        if (handlers_.received) { handlers_.received({chunk_.begin(), chunk_.begin() + static_cast<long>(size)}); }
    });
    if (isOpen_) { read(); }
}

void DescriptorStream::write(std::vector<std::uint8_t> const& bytes) {
    if (!isOpen_ || bytes.empty()) { return; }
    auto const held = waiting_.size() + writing_.size();
    if (held + bytes.size() > room_) {
        if (whenFull_ == WhenFull::close) { close("takes nothing: " + std::to_string(held) + " bytes wait"); }
        return;
    }
    waiting_.insert(waiting_.end(), bytes.begin(), bytes.end());
    if (writing_.empty()) { flush(); }
}

void DescriptorStream::flush() {
    writing_ = std::exchange(waiting_, {});
    insist([this] {
        boost::asio::async_write(
            descriptor_, boost::asio::buffer(writing_),
            [self = shared_from_this()](error_code const& error, std::size_t) { self->written(error); });
    });
}

void DescriptorStream::written(error_code const& error) {
    writing_.clear();
    if (!isOpen_) { return; }
    if (error) { return close(reasonOf(error)); }
    if (!waiting_.empty()) { flush(); }
}

void DescriptorStream::close(std::string const& reason) {
    if (!std::exchange(isOpen_, false)) { return; }
    error_code ignored;
    descriptor_.close(ignored);
    insist([&] {
        boost::asio::post(descriptor_.get_executor(), [self = shared_from_this(), reason] {
            if (!self->isAbandoned_ && self->handlers_.closed) { self->handlers_.closed(reason); }
        });
    });
}

void DescriptorStream::abandon() {
    isAbandoned_ = true;
    close({});
}

} // namespace zorv
