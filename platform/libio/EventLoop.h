// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace boost::asio {
class io_context;
} // namespace boost::asio

namespace zorv {

/// Waits for sockets, timers and signals and calls their handlers, all on the thread that runs the loop.
///
/// Objects that use a loop must be destroyed before the loop.
class ZORV_EXPORT EventLoop {
public:
    EventLoop();
    ~EventLoop();

    EventLoop(EventLoop const&) = delete;
    EventLoop& operator=(EventLoop const&) = delete;

    /// Runs until stop() is called or nothing is left to wait for. May be called again.
    void run();

    /// Ends run(), or the next run() if none is running. Does not wait. May be called from any thread.
    void stop();

    /// Has the loop's thread call `work` later. May be called from any thread.
    void post(std::function<void()> work);

    boost::asio::io_context& context() noexcept { return *context_; }

private:
    std::unique_ptr<boost::asio::io_context> context_;
};

/// Calls its work once, when its time has come, unless it is cancelled, assigned or destroyed before.
class ZORV_EXPORT Timer {
public:
    Timer() noexcept = default;
    Timer(EventLoop& loop, std::chrono::milliseconds delay, std::function<void()> work);
    ~Timer() { cancel(); }

    Timer(Timer const&) = delete;
    Timer& operator=(Timer const&) = delete;
    Timer(Timer&& other) noexcept = default;
    Timer& operator=(Timer&& other) noexcept;

    void cancel() noexcept;

private:
    struct Pending;

    std::shared_ptr<Pending> pending_;
};

/// Calls its work for each signal that arrives, in place of what the process would do by default.
class ZORV_EXPORT SignalWatch {
public:
    SignalWatch(EventLoop& loop, std::vector<int> const& signals, std::function<void(int signal)> work);
    ~SignalWatch();

    SignalWatch(SignalWatch const&) = delete;
    SignalWatch& operator=(SignalWatch const&) = delete;

private:
    struct Watch;

    std::shared_ptr<Watch> watch_;
};

} // namespace zorv
