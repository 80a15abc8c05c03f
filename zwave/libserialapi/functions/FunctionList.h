// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/functions/Memory.h"
#include "zwave/libserialapi/functions/ModuleInformation.h"
#include "zwave/libserialapi/functions/Network.h"
#include "zwave/libserialapi/functions/Receiving.h"
#include "zwave/libserialapi/functions/Routes.h"
#include "zwave/libserialapi/functions/Sending.h"
#include "zwave/libserialapi/functions/Settings.h"

#include <type_traits>

namespace zorv::serialapi {

template <class...> struct FunctionList {};

/// Every function with a table, by id.
using AllFunctions = FunctionList<
    GetInitData, ApplicationNodeInformation, ApplicationCommandHandler, GetControllerCapabilities, SetTimeouts,
    GetCapabilities, SoftReset, GetProtocolVersion, SerialApiStarted, SerialApiSetup, SetRfReceiveMode,
    SendNodeInformation, SendData, SendDataMulti, GetVersion, SendDataAbort, RfPowerLevelSet, GetRandom, Random,
    MemoryGetId, MemoryGetByte, MemoryPutByte, MemoryGetBuffer, MemoryPutBuffer, EnterBootloader, NvrGetValue, NvmGetId,
    NvmExtReadLongBuffer, NvmExtWriteLongBuffer, NvmExtReadLongByte, NvmExtWriteLongByte, NvmBackupRestore,
    ClearTxTimers, GetTxTimers, ClearNetworkStats, GetNetworkStats, GetBackgroundRssi, SetListenBeforeTalkThreshold,
    NvmExtendedBackupRestore, RemoveNodeIdFromNetwork, GetNodeProtocolInfo, SetDefault, ReplicationCommandComplete,
    ReplicationSendData, AssignReturnRoute, DeleteReturnRoute, RequestNodeNeighborUpdate, ApplicationUpdate,
    AddNodeToNetwork, RemoveNodeFromNetwork, CreateNewPrimary, ControllerChange, AssignPriorityReturnRoute,
    SetLearnMode, AssignSucReturnRoute, EnableSuc, RequestNetworkUpdate, SetSucNodeId, DeleteSucReturnRoute,
    GetSucNodeId, SendSucId, AssignPrioritySucReturnRoute, RequestNodeInfo, RemoveFailedNode, IsFailedNode,
    ReplaceFailedNode, FirmwareUpdateNvm, GetRoutingInfo, LockRoute, GetPriorityRoute, SetPriorityRoute,
    GetVirtualNodes, IsVirtualNode, ApplicationCommandHandlerBridge, SendDataBridge, SendDataMultiBridge,
    WatchdogEnable, WatchdogDisable, WatchdogKick, RfPowerLevelGet, GetNeighborCount, AreNodesNeighbors, TypeLibrary,
    SendTestFrame, GetProtocolStatus, SetPromiscuousMode, PromiscuousFrame, WatchdogStart, WatchdogStop, SetRoutingMax,
    SetMaxInclusionRequestIntervals, Shutdown, GetLrNodes, GetLrChannel, SetLrChannel, SetLrVirtualIds, GetDcdcConfig,
    SetDcdcConfig, EnableRadioPti, GetRadioPti, SerialApiReady>;

// Which forms a function has, says which way it goes: request; request and response; and so on.

template <class F, class = void> struct HasRequest : std::false_type {};
template <class F> struct HasRequest<F, std::void_t<typename F::Request>> : std::true_type {};
template <class F, class = void> struct HasResponse : std::false_type {};
template <class F> struct HasResponse<F, std::void_t<typename F::Response>> : std::true_type {};
template <class F, class = void> struct HasCallback : std::false_type {};
template <class F> struct HasCallback<F, std::void_t<typename F::Callback>> : std::true_type {};

} // namespace zorv::serialapi
