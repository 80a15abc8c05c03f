// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/Command.h"
#include "apps/quillet/ExitCode.h"

#include "platform/libio/EventLoop.h"
#include "platform/libzorvshared/ZResult.h"
#include "zwave/libclient/DaemonConnection.h"

#include <boost/shared_ptr.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zorv {

/// A connection to the daemon for a command that does one thing after the other.
///
/// Each operation lasts until its outcome is there. It ends with an ExitError when the user interrupts it, when the
/// connection is lost, or when the daemon sends something that is not a message.
class Session {
public:
    explicit Session(DaemonAddress const& address);

    /// Returns the daemon's answer, or a copy of the request with result "timeout" if none came in time.
    ///
    /// The answer is of the request's class, or the bare Confirmable by which a daemon rejects what it does not
    /// understand. `progress` is called with each answer before the last one.
    boost::shared_ptr<Confirmable> ask(boost::shared_ptr<Confirmable> const& request,
                                       std::optional<std::chrono::milliseconds> timeout = {},
                                       MessageBus::Answered const& progress = {});

    /// Sends a request whose answer does not matter, without waiting.
    void request(boost::shared_ptr<Confirmable> const& request);

    /// Sends a request and has `answered` called with its answer while another operation lasts, without waiting.
    void request(boost::shared_ptr<Confirmable> const& request, std::chrono::milliseconds timeout,
                 std::function<void(Confirmable const& answer)> answered);

    /// Sends a message that gets no answer, without waiting.
    void tell(boost::shared_ptr<TMessage> const& message) { connection_.tell(message); }

    /// Sends a message that gets no answer, and waits until it has gone. The connection ends with it.
    void tellLast(boost::shared_ptr<TMessage> const& message);

    /// The same, and waits until the daemon ends the connection; false where it does not in time.
    bool tellAndWaitForEnd(boost::shared_ptr<TMessage> const& message);

    /// Has `heard` called with each message of the catalogue that comes unasked, from now on.
    void hear(std::function<void(TMessage const& message)> heard);

    /// Serves what was set up with hear() until stop() is called or the user interrupts it.
    void serve() { wait(); }
    void stop() { loop_.stop(); }

    /// Calls `work` at the next interruption, which ends the operation unless it returns true; the one after that does.
    void onInterruption(std::function<bool()> work) { interrupted_ = std::move(work); }

    /// Calls `work` once a second while an operation lasts; an empty one ends that.
    void everySecond(std::function<void()> work);

    void pause(std::chrono::milliseconds duration);

private:
    DaemonConnection::Handlers connectionHandlers();
    void ended(ConnectionEnd how, std::string const& reason);
    void interrupt();
    void call(std::function<void()> const& work);
    void tickLater();
    void wait();
    void end(ExitCode code, std::string const& text);

    std::chrono::milliseconds timeout_;
    std::optional<ExitError> end_;
    std::function<bool()> interrupted_;
    bool isLeaving_ = false; ///< the end of the connection is what is waited for
    std::unique_ptr<EventLoop> ownLoop_;
    EventLoop& loop_;
    SignalWatch interrupt_;
    std::function<void()> tick_;
    Timer nextTick_;
    DaemonConnection connection_;
};

} // namespace zorv
