// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/Command.h"

#include "platform/libio/EventLoop.h"
#include "platform/libmessage_bus/MessageBus.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zorv {

/// A connection that hears of the daemon's events as long as it lives: where it is lost, it is made again, and what was
/// subscribed to is subscribed to again.
class EventFeed {
public:
    struct Handlers {
        std::function<void(TMessage const& event)> event;
        std::function<void(std::string const& text)> changed; ///< the connection was lost, or is there again
    };

    EventFeed(EventLoop& loop, DaemonAddress const& daemon, Handlers handlers);

    EventFeed(EventFeed const&) = delete;
    EventFeed& operator=(EventFeed const&) = delete;

    /// Serves the loop until the first try to connect has come to an end, so that what is known from the start is known,
    /// or until `isOver` says so.
    void waitForStart(bool const& isOver);

    /// The nodes that the network has, as users type them.
    std::vector<std::string> const& nodes() const noexcept { return nodes_; }

private:
    MessageBus::Handlers busHandlers();
    void connect();
    void open(TcpConnection connection);
    void heard(TMessage const& message);
    void lost(std::string const& reason);
    void askForNodes();
    void started();

    EventLoop& loop_;
    DaemonAddress daemon_;
    Handlers handlers_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>();
    MessageBus bus_;
    PeerId peer_{};
    Timer retry_;
    bool isStarted_ = false;
    bool isLost_ = false; ///< and the user knows
    std::vector<std::string> nodes_;
};

} // namespace zorv
