// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/EventLoop.h"

#include "platform/libio/insist.h"
#include "platform/libzorvlogger/Logger.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <new>
#include <utility>

namespace zorv {

EventLoop::EventLoop() : context_(std::make_unique<boost::asio::io_context>(1)) {}

EventLoop::~EventLoop() = default;

void EventLoop::run() {
    for (bool isOver = false; !isOver;) {
        try {
            context_->run();
            isOver = true;
        } catch (std::bad_alloc const&) {
            // Whoever must not leave something undone has seen to it; the others go on.
            ifMemoryAllows([] { Logger::log(LogLevel::warn, "EventLoop: out of memory", BOOST_CURRENT_LOCATION); });
        }
    }
    context_->restart();
}

void EventLoop::stop() { context_->stop(); }

void EventLoop::post(std::function<void()> work) { boost::asio::post(*context_, std::move(work)); }

struct Timer::Pending {
    Pending(boost::asio::io_context& context, std::chrono::milliseconds delay, std::function<void()>&& theWork)
        : timer(context, delay), work(std::move(theWork)) {}

    boost::asio::steady_timer timer;
    std::function<void()> work;
};

Timer::Timer(EventLoop& loop, std::chrono::milliseconds delay, std::function<void()> work)
    : pending_(std::make_shared<Pending>(loop.context(), delay, std::move(work))) {
    pending_->timer.async_wait([pending = pending_](boost::system::error_code const& error) {
        // Asio reports no error for a timer that is cancelled after its time has come.
        if (error || !pending->work) { return; }
        auto const expired = std::exchange(pending->work, nullptr);
        expired();
    });
}

Timer& Timer::operator=(Timer&& other) noexcept {
    if (this != &other) {
        cancel();
        pending_ = std::move(other.pending_);
    }
    return *this;
}

void Timer::cancel() noexcept {
    if (!pending_) { return; }
    pending_->work = nullptr;
    boost::system::error_code ignored;
    pending_->timer.cancel(ignored);
    pending_.reset();
}

struct SignalWatch::Watch : std::enable_shared_from_this<SignalWatch::Watch> {
    Watch(boost::asio::io_context& context, std::function<void(int)>&& theWork)
        : signals(context), work(std::move(theWork)) {}

    void wait() {
        signals.async_wait([watch = shared_from_this()](boost::system::error_code const& error, int signal) {
            if (error || watch->over) { return; }
            watch->wait(); // first: the next signal is to be heard whatever becomes of this one
            watch->work(signal);
        });
    }

    boost::asio::signal_set signals;
    std::function<void(int)> work;
    bool over = false;
};

SignalWatch::SignalWatch(EventLoop& loop, std::vector<int> const& signals, std::function<void(int)> work)
    : watch_(std::make_shared<Watch>(loop.context(), std::move(work))) {
    for (auto const signal : signals) { watch_->signals.add(signal); }
    watch_->wait();
}

SignalWatch::~SignalWatch() {
    watch_->over = true;
    boost::system::error_code ignored;
    watch_->signals.clear(ignored);
    watch_->signals.cancel(ignored);
}

} // namespace zorv
