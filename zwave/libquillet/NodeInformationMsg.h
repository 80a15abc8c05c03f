// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/Device.h"
#include "zwave/libquillet/CliDisplayMsg.h"

#include <boost/unordered_map.hpp>

namespace zorv {

/// What a node-information message does.
namespace GetNodesOp {

enum Enum : int { undefined, get, set, update };

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace GetNodesOp

/// Which table the command-line client draws of the nodes.
namespace DisplayOption {

enum Enum : int { none, all, info, status, cmdClasses, cmdClassDetail };

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace DisplayOption

using DeviceMap = boost::unordered_map<ZwaveAddress, boost::shared_ptr<Device>>;
using AgentDataMap = boost::unordered_map<ZwaveAddress, boost::shared_ptr<AgentData>>;

// Larger than most messages: it draws six tables, and answers other messages than its own kind.

/// Carries what the daemon knows of the nodes. A client asks for it ("get"), the daemon answers ("set"), and tells
/// everyone when a node has changed ("update").
class QUILLET_EXPORT NodeInformationMsg : public MessageOf<NodeInformationMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    NodeInformationMsg() = default;
    NodeInformationMsg(GetNodesOp::Enum operation, DisplayOption::Enum displayOptions, DeviceMap const& devices)
        : operation_(operation), displayOptions_(displayOptions), devices_(devices) {}
    /// The devices are shared; the agents stay behind.
    NodeInformationMsg(NodeInformationMsg const& other)
        : MessageOf(other),
          operation_(other.operation_),
          displayOptions_(other.displayOptions_),
          devices_(other.devices_) {}
    /// As the copy constructor: the agents of both stay behind.
    NodeInformationMsg& operator=(NodeInformationMsg const& other);

    static boost::shared_ptr<NodeInformationMsg> create(GetNodesOp::Enum operation, DisplayOption::Enum displayOptions,
                                                        DeviceMap const& devices);
    /// Answers any message, with operation "set".
    static boost::shared_ptr<NodeInformationMsg> create(boost::shared_ptr<TMessage> const& request,
                                                        DeviceMap const& devices);
    /// Answers a message of this class, with its display option.
    static boost::shared_ptr<NodeInformationMsg> create(boost::shared_ptr<NodeInformationMsg> const& request,
                                                        GetNodesOp::Enum operation, DeviceMap const& devices);
    /// Tells that one node has changed. Errors: NullPointerError "device is null".
    static boost::shared_ptr<NodeInformationMsg> create(boost::shared_ptr<Device> const& device);

    /// Says which agents are bound to nodes, for the display of "all"; they do not travel.
    void agentData(AgentDataMap const& agentData) { agentData_ = agentData; }

    GetNodesOp::Enum operation() const noexcept { return operation_; }
    DisplayOption::Enum displayOptions() const noexcept { return displayOptions_; }
    DeviceMap const& devices() const noexcept { return devices_; }
    AgentDataMap const& agentData() const noexcept { return agentData_; }

    /// Appends the rows of the chosen table, nodes in the order of their addresses; the titles only to an empty table.
    /// Every entry has to hold a device.
    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    void displayDevice(StringVecVec& rows, ZwaveAddress const& address, Device const& device) const;
    void displayAll(StringVecVec& rows, Device const& device) const;
    void displayCommandClassDetail(StringVecVec& rows, ZwaveAddress const& address, Device const& device) const;

    GetNodesOp::Enum operation_ = GetNodesOp::undefined;
    DisplayOption::Enum displayOptions_ = DisplayOption::none;
    DeviceMap devices_;
    AgentDataMap agentData_; // the client's own
};

extern template class MessageOf<NodeInformationMsg, Confirmable>;

} // namespace zorv
