// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/Announcer.h"
#include "apps/zwaved/ModuleLink.h"
#include "apps/zwaved/Requests.h"

#include "platform/libmessage_bus/MessageBus.h"
#include "platform/libtransport/TMessage.h"

namespace zorv::daemon {

/// What the families of messages work with.
struct Context {
    MessageBus& bus;
    ModuleLink& link;
    Requests& requests;
    Announcer& announcer;

    controller::Network const& network() const { return link.controller().network(); }

    /// The node of an address; 0 where it is none of this network. Home id 0 stands for this network.
    serialapi::NodeId nodeOf(ZwaveAddress const& address) const {
        bool const isHere = address.homeId() == 0 || address.homeId() == network().homeId;
        return isHere ? address.nodeId() : serialapi::NodeId{0};
    }

    Device const* deviceOf(ZwaveAddress const& address) const { return network().nodes.find(nodeOf(address)); }
};

/// Whether whoever sent the message may change the module and end the daemon: who comes from this machine.
bool mayAdminister(TMessage const& message);

} // namespace zorv::daemon
