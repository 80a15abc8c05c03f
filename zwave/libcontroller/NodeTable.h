// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "zwave/libcontroller/Observer.h"
#include "zwave/libserialapi/functions/Network.h"

#include <cstddef>
#include <map>

namespace zorv::controller {

/// The nodes of the network and what was learnt of each; tells the observer of every change.
class ZORV_EXPORT NodeTable {
public:
    using Devices = std::map<NodeId, Device>;

    explicit NodeTable(Observer& observer) : observer_(observer) {}

    Device const* find(NodeId node) const noexcept;
    Devices const& devices() const noexcept { return devices_; }

    /// Adds a node; one of the same id is replaced.
    void add(Device const& device);
    void remove(NodeId node);
    void clear();

    /// Lets `change` work on a node's record, and tells of it; nothing happens where there is no such node.
    template <class Change> void change(NodeId node, Change const& change) {
        auto const found = devices_.find(node);
        if (found == devices_.end()) { return; }
        change(found->second);
        observer_.nodeChanged(found->second);
    }

    // What is told only where it is new.
    void networkStatus(NodeId node, DeviceNetworkStatus::Enum status);
    void wakeStatus(NodeId node, WakeStatus::Enum status);

private:
    Observer& observer_;
    Devices devices_;
};

/// What a module says of a node, as the node's record holds it.
ZORV_EXPORT DeviceInfo deviceInfo(serialapi::GetNodeProtocolInfo::Response const& info,
                                  Manufacturer const& manufacturer = {});

/// Takes what a node says of its command classes into its record; versions that are known are kept.
ZORV_EXPORT void takeCommandClasses(Device& device, Bytes const& commandClasses);

/// Whether the node implements the command class.
ZORV_EXPORT bool supports(Device const& device, CommandClassType::Enum commandClass);

} // namespace zorv::controller
