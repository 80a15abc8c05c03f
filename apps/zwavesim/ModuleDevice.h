// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwavesim/DeviceLink.h"
#include "platform/libio/PseudoTerminal.h"
#include "zwave/libmodulesim/ModulePlayer.h"

#include <memory>
#include <optional>
#include <string>

namespace zorv {

class EventLoop;

/// A simulated module that other processes take for a serial device.
class ModuleDevice {
public:
    /// Without `link`, the device has only the name that the system gives it.
    ModuleDevice(EventLoop& loop, modulesim::SimulatedNetwork network, std::string const& link);

    /// Where it is to be opened.
    std::string const& path() const noexcept { return terminal_->path(); }

private:
    void plugIn();
    void plugOut();

    EventLoop& loop_;
    std::optional<DeviceLink> link_;
    std::unique_ptr<PseudoTerminal> terminal_;
    modulesim::ModulePlayer player_;
};

} // namespace zorv
