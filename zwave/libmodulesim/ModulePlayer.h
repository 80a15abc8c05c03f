// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libio/EventLoop.h"
#include "zwave/libmodulesim/SimulatedModule.h"

#include <functional>
#include <utility>

namespace zorv::modulesim {

/// Lets a simulated module live in real time, on an event loop.
class ZORV_EXPORT ModulePlayer {
public:
    using ToHost = std::function<void(Bytes const& bytes)>;
    using Presence = std::function<void(bool isThere)>;

    /// Turns the module's power on. `toHost` is called by the loop, never during a call to this object, which it must
    /// not destroy.
    ModulePlayer(EventLoop& loop, SimulatedNetwork network, ToHost toHost);

    /// Has told, like `toHost`, that the module's port is gone, and that it is back.
    void presence(Presence handler) { presence_ = std::move(handler); }

    /// Takes what the host has sent.
    void receive(Bytes const& bytes);

    /// The module, to do something to it; it goes on at the loop's next turn.
    SimulatedModule& module();
    SimulatedModule const& module() const noexcept { return module_; }

private:
    void goOn();

    EventLoop& loop_;
    SimulatedModule module_;
    ToHost toHost_;
    Presence presence_;
    bool isThere_ = true;
    Bytes received_;
    Timer next_;
};

} // namespace zorv::modulesim
