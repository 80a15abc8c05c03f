// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/Command.h"
#include "apps/quillet/ExitCode.h"

#include "platform/libio/EventLoop.h"
#include "platform/libmessage_bus/MessageBus.h"
#include "platform/libzorvshared/ZResult.h"
#include "zwave/libquillet/Confirmable.h"

#include <boost/shared_ptr.hpp>

#include <chrono>
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
    /// understand.
    boost::shared_ptr<Confirmable> ask(boost::shared_ptr<Confirmable> const& request);

    void pause(std::chrono::milliseconds duration);

private:
    MessageBus::Handlers busHandlers();
    void open(TcpConnection connection);
    std::string judgeOpening(TMessage const& first);
    void wait();
    void end(ExitCode code, std::string const& text);

    std::chrono::milliseconds timeout_;
    std::optional<ExitError> end_;
    EventLoop loop_;
    SignalWatch interrupt_;
    MessageBus bus_;
    PeerId daemon_{};
};

} // namespace zorv
