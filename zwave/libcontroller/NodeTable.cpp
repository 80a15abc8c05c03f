// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/NodeTable.h"

#include <cstddef>
#include <utility>

namespace zorv::controller {

namespace {

constexpr Byte controlledMark = 0xEF;     ///< the classes behind it are controlled, not supported
constexpr Byte firstExtendedClass = 0xF1; ///< from here on a class has two bytes

template <class Enum> Enum to(Byte byte) { return static_cast<Enum>(byte); }

} // namespace

Device const* NodeTable::find(NodeId node) const noexcept {
    auto const found = devices_.find(node);
    return found == devices_.end() ? nullptr : &found->second;
}

void NodeTable::add(Device const& device) {
    auto const [placed, isNew] = devices_.insert_or_assign(device.address().nodeId(), device);
    try {
        observer_.nodeAdded(placed->second);
    } catch (...) { // what nobody knows of is not there: it is added again when the module is next read
        if (isNew) { devices_.erase(placed); }
        throw;
    }
}

void NodeTable::remove(NodeId node) {
    auto const found = devices_.find(node);
    if (found == devices_.end()) { return; }
    auto removed = devices_.extract(found);
    try {
        observer_.nodeRemoved(removed.mapped());
    } catch (...) {
        devices_.insert(std::move(removed));
        throw;
    }
}

void NodeTable::clear() {
    while (!devices_.empty()) { remove(devices_.begin()->first); }
}

void NodeTable::networkStatus(NodeId node, DeviceNetworkStatus::Enum status) {
    auto const* const device = find(node);
    if (device == nullptr || device->deviceNetworkStatus() == status) { return; }
    change(node, [status](Device& changed) { changed.deviceNetworkStatus(status); });
}

void NodeTable::wakeStatus(NodeId node, WakeStatus::Enum status) {
    auto const* const device = find(node);
    if (device == nullptr || device->wakeStatus() == status) { return; }
    change(node, [status](Device& changed) { changed.wakeStatus(status); });
}

DeviceInfo deviceInfo(serialapi::GetNodeProtocolInfo::Response const& info, Manufacturer const& manufacturer) {
    NodeProtocolInfo const protocolInfo(
        to<Capability::Enum>(info.capability), to<Security::Enum>(info.security), to<BasicDeviceType::Enum>(info.basic),
        to<GenericDeviceType::Enum>(info.generic), to<SpecificDeviceType::Enum>(info.specific));
    bool const isSlave = (info.security & Security::controller) == 0;
    return {manufacturer, protocolInfo, isSlave, false};
}

void takeCommandClasses(Device& device, Bytes const& commandClasses) {
    auto attribs = CommandClassAttribs::supported;
    for (std::size_t i = 0; i < commandClasses.size(); ++i) {
        auto const byte = commandClasses[i];
        if (byte == controlledMark) {
            attribs = CommandClassAttribs::controlled;
        } else if (byte >= firstExtendedClass) {
            ++i; // no record of ours has room for a class of two bytes
        } else {
            auto const type = to<CommandClassType::Enum>(byte);
            auto const known = device.commandClasses().find(type);
            bool const isKnown = known != device.commandClasses().end();
            auto const version = isKnown ? known->second.classVersion() : Byte{0};
            auto const all =
                static_cast<CommandClassAttribs::Enum>(isKnown ? known->second.attribs() | attribs : attribs);
            device.commandClass(type, CommandClassInfo(version, all));
        }
    }
}

bool supports(Device const& device, CommandClassType::Enum commandClass) {
    auto const found = device.commandClasses().find(commandClass);
    return found != device.commandClasses().end() && (found->second.attribs() & CommandClassAttribs::supported) != 0;
}

} // namespace zorv::controller
