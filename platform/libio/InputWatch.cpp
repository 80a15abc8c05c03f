// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/InputWatch.h"

#include "platform/libio/EventLoop.h"

#include <boost/asio/posix/stream_descriptor.hpp>

#include <sys/epoll.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace zorv {

/// Asio makes what it watches non-blocking, for all that share it. So it watches something of our own that is readable
/// when the descriptor is.
struct InputWatch::Watch {
    Watch(boost::asio::io_context& context, std::function<void()>&& theWork)
        : readiness(context), work(std::move(theWork)) {}

    boost::asio::posix::stream_descriptor readiness;
    std::function<void()> work;
};

InputWatch::InputWatch(EventLoop& loop, int descriptor, std::function<void()> work)
    : watch_(std::make_shared<Watch>(loop.context(), std::move(work))) {
    auto const epoll = ::epoll_create1(EPOLL_CLOEXEC);
    if (epoll < 0) { throw std::system_error(errno, std::generic_category(), "epoll_create1"); }
    watch_->readiness.assign(epoll);
    epoll_event event{};
    event.events = EPOLLIN;
    if (::epoll_ctl(epoll, EPOLL_CTL_ADD, descriptor, &event) != 0) {
        throw std::system_error(errno, std::generic_category(), "epoll_ctl");
    }
    watch_->readiness.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                                 [watch = watch_](boost::system::error_code const& error) {
                                     if (auto const ready = std::exchange(watch->work, nullptr); ready && !error) {
                                         ready();
                                     }
                                 });
}

InputWatch::~InputWatch() {
    watch_->work = nullptr;
    boost::system::error_code ignored;
    watch_->readiness.cancel(ignored);
}

} // namespace zorv
