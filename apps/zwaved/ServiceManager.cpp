// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/ServiceManager.h"

#include "platform/libio/insist.h"

#include <systemd/sd-daemon.h>

#include <cstdint>
#include <string>

namespace zorv::daemon {

namespace {

/// Nobody may listen; then nothing is to be done about it.
void notify(std::string const& state) { static_cast<void>(::sd_notify(0, state.c_str())); }

} // namespace

void ServiceManager::ready() {
    notify("READY=1");
    std::uint64_t microseconds = 0;
    if (::sd_watchdog_enabled(0, &microseconds) <= 0) { return; }
    // Half of the time, as is usual.
    feedWatchdog(std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::microseconds(microseconds / 2)));
}

void ServiceManager::feedWatchdog(std::chrono::milliseconds pause) {
    insist([&] {
        notify("WATCHDOG=1");
        watchdog_ = Timer(loop_, pause, [this, pause] { feedWatchdog(pause); });
    });
}

void ServiceManager::tell(SystemStatus::Enum status) {
    auto const state = std::string("STATUS=") + SystemStatus::toString(status);
    notify(status == SystemStatus::stopping ? "STOPPING=1\n" + state : state);
}

} // namespace zorv::daemon
