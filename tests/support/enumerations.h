// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/MessageRole.h"
#include "platform/libtransport/Priority.h"
#include "platform/libtransport/TResult.h"
#include "platform/libzorvshared/BasicDeviceType.h"
#include "platform/libzorvshared/Capability.h"
#include "platform/libzorvshared/CommandClassAttribs.h"
#include "platform/libzorvshared/CommandClassType.h"
#include "platform/libzorvshared/ControllerCapabilities.h"
#include "platform/libzorvshared/ControllerRole.h"
#include "platform/libzorvshared/DeviceLights.h"
#include "platform/libzorvshared/DeviceNetworkStatus.h"
#include "platform/libzorvshared/DeviceStatus.h"
#include "platform/libzorvshared/GenericDeviceType.h"
#include "platform/libzorvshared/LearnMode.h"
#include "platform/libzorvshared/LearnModeStatus.h"
#include "platform/libzorvshared/ManufacturerId.h"
#include "platform/libzorvshared/ModuleType.h"
#include "platform/libzorvshared/ObserveAction.h"
#include "platform/libzorvshared/ObserveDirection.h"
#include "platform/libzorvshared/RequestNeighborUpdateStatus.h"
#include "platform/libzorvshared/RequestNetworkUpdateStatus.h"
#include "platform/libzorvshared/Security.h"
#include "platform/libzorvshared/SecurityStatus.h"
#include "platform/libzorvshared/SocketActor.h"
#include "platform/libzorvshared/SpecificDeviceType.h"
#include "platform/libzorvshared/SystemStatus.h"
#include "platform/libzorvshared/TransmitOption.h"
#include "platform/libzorvshared/WakeStatus.h"
#include "platform/libzorvshared/ZwApiCommand.h"
#include "zwave/libquillet/AddRemoveNodeMsg.h"
#include "zwave/libquillet/CommandClassMsg.h"
#include "zwave/libquillet/ConfigurationMsg.h"
#include "zwave/libquillet/ControlCommandMsg.h"
#include "zwave/libquillet/ControllerInfoMsg.h"
#include "zwave/libquillet/DaemonStatusMsg.h"
#include "zwave/libquillet/FirmwareUpdateMsg.h"
#include "zwave/libquillet/ManageFailedNodeMsg.h"
#include "zwave/libquillet/ManageNvmMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/NvmOpEvt.h"
#include "zwave/libquillet/SerialManagerEvt.h"
#include "zwave/libquillet/SessionLayerMsg.h"
#include "zwave/libquillet/SocketStatusMsg.h"

namespace zorv {

template <class... Enums> struct EnumList {};

/// Every enumeration whose values have texts. A test compares the list with what the headers declare.
using Enumerations =
    EnumList<AddRemoveOp::Enum, BasicDeviceType::Enum, Capability::Enum, CommandClassAttribs::Enum,
             CommandClassType::Enum, ConfigurationStatus::Enum, ControlCommandOp::Enum, ControllerCapabilities::Enum,
             ControllerInfoOption::Enum, ControllerRole::Enum, DaemonDetail::Enum, DaemonStatus::Enum,
             DeviceLights::Enum, DeviceNetworkStatus::Enum, DeviceStatus::Enum, DisplayOption::Enum,
             FirmwareUpdateStatus::Enum, FrameCast::Enum, GenericDeviceType::Enum, GetNodesOp::Enum, LearnMode::Enum,
             LearnModeStatus::Enum, ManageFailedNodeOp::Enum, ManageFailedNodeStatus::Enum, ManageNvmOp::Enum,
             ManufacturerId::Enum, MessageRole::Enum, ModuleType::Enum, NvmOp::Enum, ObserveAction::Enum,
             ObserveDirection::Enum, Priority::Enum, ProtocolVersion::Enum, ReceivedStatus::Enum,
             RequestNeighborUpdateStatus::Enum, RequestNetworkUpdateStatus::Enum, Security::Enum, SecurityStatus::Enum,
             SerialManagerStatus::Enum, SessionLayerOp::Enum, SessionLayerStatus::Enum, SocketActor::Enum,
             SocketEvent::Enum, SpecificDeviceType::Enum, SystemStatus::Enum, TResult::Enum, TransmitOption::Enum,
             WakeStatus::Enum, ZwApiCommand::Enum>;

} // namespace zorv
