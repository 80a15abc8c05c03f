// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/Command.h"

#include "platform/libio/EventLoop.h"
#include "zwave/libclient/Client.h"

#include <functional>
#include <string>
#include <vector>

namespace zorv {

/// Hears of the daemon's events as long as it lives, and knows the nodes.
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
    ClientHandlers clientHandlers();
    void connected();
    void heard(TMessage const& message);
    void lost(std::string const& reason);
    void askForNodes();
    void started();

    EventLoop& loop_;
    Handlers handlers_;
    std::chrono::milliseconds timeout_;
    bool isStarted_ = false;
    bool isLost_ = false; ///< and the user knows
    std::vector<std::string> nodes_;
    Client client_;
};

} // namespace zorv
