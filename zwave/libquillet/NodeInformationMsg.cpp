// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/NodeInformationMsg.h"

#include "platform/libtransport/tables/EnumTable.h"
#include "transport/displayRow.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/requireNonNull.h"
#include "zwave/libquillet/support/respond.h"

#include <algorithm>

namespace zorv {

std::string const NodeInformationMsg::NAME("NodeInformationMsg");
SerialRegistrar const NodeInformationMsg::registrar("zorv::" + NAME, &NodeInformationMsg::serialFactory);

namespace GetNodesOp {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace GetNodesOp

namespace DisplayOption {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace DisplayOption

struct NodeInformationMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&NodeInformationMsg::operation_>("what the message does"),
                        member<&NodeInformationMsg::displayOptions_>("which table is drawn"),
                        member<&NodeInformationMsg::devices_>("the nodes by their addresses"));
};

template class MessageOf<NodeInformationMsg, Confirmable>;

NodeInformationMsg& NodeInformationMsg::operator=(NodeInformationMsg const& other) {
    if (this == &other) { return *this; }
    MessageOf::operator=(other);
    operation_ = other.operation_;
    displayOptions_ = other.displayOptions_;
    devices_ = other.devices_;
    agentData_.clear();
    return *this;
}

boost::shared_ptr<NodeInformationMsg>
NodeInformationMsg::create(GetNodesOp::Enum operation, DisplayOption::Enum displayOptions, DeviceMap const& devices) {
    return boost::make_shared<NodeInformationMsg>(operation, displayOptions, devices);
}

boost::shared_ptr<NodeInformationMsg> NodeInformationMsg::create(boost::shared_ptr<TMessage> const& request,
                                                                 DeviceMap const& devices) {
    auto response =
        respondWithNew<NodeInformationMsg>(requireMessage(request), GetNodesOp::set, DisplayOption::none, devices);
    response->result(ZResult::success);
    return response;
}

boost::shared_ptr<NodeInformationMsg> NodeInformationMsg::create(boost::shared_ptr<NodeInformationMsg> const& request,
                                                                 GetNodesOp::Enum operation, DeviceMap const& devices) {
    auto const& asked = requireMessage(request);
    auto response = respondWithNew<NodeInformationMsg>(asked, operation, asked.displayOptions_, devices);
    response->result(ZResult::success);
    return response;
}

boost::shared_ptr<NodeInformationMsg> NodeInformationMsg::create(boost::shared_ptr<Device> const& device) {
    auto const& address = requireNonNull(device, "device is null").address();
    auto update = create(GetNodesOp::update, DisplayOption::none, DeviceMap{{address, device}});
    update->result(ZResult::success);
    return update;
}

namespace {

/// In decimal, as node ids are written; a byte would be shown as two hex digits.
unsigned int nodeId(Device const& device) { return device.address().nodeId(); }

std::string power(Device const& device) {
    if (device.isFrequentlyListening()) { return "flirs"; }
    return device.isSleeping() ? toString(device.wakeStatus()) : "mains";
}

void displayOverview(StringVecVec& rows, Device const& device) {
    if (rows.empty()) { displayRow(rows, "NodeId", "Search Type", "Status", "Device", "Security", "Power"); }
    displayRow(rows, nodeId(device), device.deviceInfo().manufacturer().searchType(), device.deviceNetworkStatus(),
               device.deviceStatus(), device.securityStatus(), power(device));
}

void displayInfo(StringVecVec& rows, Device const& device) {
    if (rows.empty()) { displayRow(rows, "NodeId", "Basic", "Generic", "Specific", "Capability", "Security"); }
    auto const& info = device.deviceInfo().protocolInfo();
    displayRow(rows, nodeId(device), info.basicDeviceType(), info.genericDeviceType(), info.specificDeviceType(),
               info.capability(), info.security());
}

void displayStatus(StringVecVec& rows, Device const& device) {
    if (rows.empty()) { displayRow(rows, "NodeId", "Basic", "HomeId", "Slave", "Virtual", "Repeater"); }
    auto const& info = device.deviceInfo();
    displayRow(rows, nodeId(device), info.protocolInfo().basicDeviceType(), device.address().homeId(), info.isSlave(),
               info.isVirtual(), info.isRepeater());
}

void displayCommandClasses(StringVecVec& rows, Device const& device) {
    if (rows.empty()) { displayRow(rows, "Node", "Command Classes"); }
    std::string classes;
    for (auto const& [type, info] : device.commandClasses()) {
        if (!classes.empty()) { classes += ' '; }
        classes += toString(type) + 'V' + std::to_string(info.classVersion());
    }
    displayRow(rows, nodeId(device), classes);
}

} // namespace

void NodeInformationMsg::displayCommandClassDetail(StringVecVec& rows, ZwaveAddress const& address,
                                                   Device const& device) const {
    displayRow(rows, "Node information:", displayOptions_);
    displayRow(rows, "Address:", address.address());
    for (auto const& [type, info] : device.commandClasses()) {
        displayRow(rows, toString(type) + " V" + std::to_string(info.classVersion()) + ':', info.attribs());
    }
}

void NodeInformationMsg::displayAll(StringVecVec& rows, Device const& device) const {
    displayRow(rows, "");
    displayRow(rows, "Node Information: ");
    device.accumulateDisplay(rows);
    auto const agent = agentData_.find(device.address());
    if (agent != agentData_.end() && agent->second) { agent->second->accumulateDisplay(rows); }
}

void NodeInformationMsg::displayDevice(StringVecVec& rows, ZwaveAddress const& address, Device const& device) const {
    switch (displayOptions_) {
    case DisplayOption::all: return displayAll(rows, device);
    case DisplayOption::info: return displayInfo(rows, device);
    case DisplayOption::status: return displayStatus(rows, device);
    case DisplayOption::cmdClasses: return displayCommandClasses(rows, device);
    case DisplayOption::cmdClassDetail: return displayCommandClassDetail(rows, address, device);
    case DisplayOption::none: break;
    }
    displayOverview(rows, device); // also for a number that is no option
}

void NodeInformationMsg::accumulateDisplay(StringVecVec& rows) const {
    std::vector<ZwaveAddress> addresses;
    addresses.reserve(devices_.size());
    for (auto const& entry : devices_) { addresses.push_back(entry.first); }
    std::sort(addresses.begin(), addresses.end());
    for (auto const& address : addresses) {
        displayDevice(rows, address, requireNonNull(devices_.at(address), "device is null"));
    }
}

} // namespace zorv
