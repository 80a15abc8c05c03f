// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libio/EventLoop.h"
#include "zwave/libquillet/SystemStatusEvt.h"

#include <chrono>

namespace zorv::daemon {

/// Tells the system's service manager, where that has started the daemon, how it is. A loop that does not turn any more
/// misses the watchdog's time, and the daemon is started anew.
class ServiceManager {
public:
    explicit ServiceManager(EventLoop& loop) : loop_(loop) {}

    ServiceManager(ServiceManager const&) = delete;
    ServiceManager& operator=(ServiceManager const&) = delete;

    /// Clients can connect, and the loop serves them.
    void ready();

    void tell(SystemStatus::Enum status);

private:
    void feedWatchdog(std::chrono::milliseconds pause);

    EventLoop& loop_;
    Timer watchdog_;
};

} // namespace zorv::daemon
