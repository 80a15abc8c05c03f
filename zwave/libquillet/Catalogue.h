// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/TypeDescriptor.h"
#include "zwave/libquillet/AddRemoveNodeMsg.h"
#include "zwave/libquillet/CliDisplayMsg.h"
#include "zwave/libquillet/CommandClassMsg.h"
#include "zwave/libquillet/ConfigurationMsg.h"
#include "zwave/libquillet/ControlCommandMsg.h"
#include "zwave/libquillet/ControllerInfoMsg.h"
#include "zwave/libquillet/DaemonStatusMsg.h"
#include "zwave/libquillet/DeviceStatusMsg.h"
#include "zwave/libquillet/FirmwareUpdateMsg.h"
#include "zwave/libquillet/LearnModeMsg.h"
#include "zwave/libquillet/ManageFailedNodeMsg.h"
#include "zwave/libquillet/ManageNvmMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/NvmOpEvt.h"
#include "zwave/libquillet/ObserveMsg.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/QuitMsg.h"
#include "zwave/libquillet/RequestNeighborUpdateMsg.h"
#include "zwave/libquillet/RequestNetworkUpdateMsg.h"
#include "zwave/libquillet/ResetDefaultsMsg.h"
#include "zwave/libquillet/SendCommandMsg.h"
#include "zwave/libquillet/SendNifMsg.h"
#include "zwave/libquillet/SerialManagerEvt.h"
#include "zwave/libquillet/SessionLayerMsg.h"
#include "zwave/libquillet/SocketStatusMsg.h"
#include "zwave/libquillet/SubscribeMsg.h"
#include "zwave/libquillet/SystemStatusEvt.h"
#include "zwave/libquillet/VersionMsg.h"

#include <vector>

namespace zorv {

template <class... Messages> struct MessageList {};

/// Every message of the catalogue. Tests, reference and schema cover what stands here.
using Catalogue = MessageList< //
    AddRemoveNodeMsg,          //
    CliDisplayMsg,             //
    CommandClassMsg,           //
    ConfigurationMsg,          //
    ControlCommandMsg,         //
    ControllerInfoMsg,         //
    DaemonStatusMsg,           //
    DeviceStatusMsg,           //
    FirmwareUpdateMsg,         //
    LearnModeMsg,              //
    ManageFailedNodeMsg,       //
    ManageNvmMsg,              //
    NodeInformationMsg,        //
    NvmOpEvt,                  //
    ObserveMsg,                //
    PingMsg,                   //
    QuitMsg,                   //
    RequestNeighborUpdateMsg,  //
    RequestNetworkUpdateMsg,   //
    ResetDefaultsMsg,          //
    SendCommandMsg,            //
    SendNifMsg,                //
    SerialManagerEvt,          //
    SessionLayerMsg,           //
    SocketStatusMsg,           //
    SubscribeMsg,              //
    SystemStatusEvt,           //
    VersionMsg>;

/// What the catalogue's messages look like on the wire, in its order.
QUILLET_EXPORT std::vector<TypeDescriptor> const& describeCatalogue();

} // namespace zorv
