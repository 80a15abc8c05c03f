// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "zwave/libcontroller/NodeTable.h"
#include "zwave/libserialapi/functions/FunctionList.h"

#include <optional>
#include <string>
#include <vector>

namespace zorv::controller {

/// What a module said of itself when it was started.
struct ModuleInformation {
    std::string version; ///< "Z-Wave 7.18"
    Byte libraryType = 0;
    serialapi::GetCapabilities::Response capabilities;
    std::optional<serialapi::GetProtocolVersion::Response> protocol;
    Byte setupCommands = 0; ///< flags of SerialApiSetup
    std::optional<Byte> region;
    Byte apiVersion = 0;
    Byte chipType = 0; ///< 5 for the 500 series, 7 and 8 for the 700 and 800 series
    Byte chipVersion = 0;
    Byte roles = 0; ///< flags of GetControllerCapabilities
    NodeId sucNode = 0;
    unsigned int longRangeNodes = 0; ///< which have no place in the node table

    /// To be asked before a function is called that not every module has.
    template <class Function> bool knows() const { return capabilities.functions.contains(Function::id); }

    /// Whether it takes firmware by its functions, as the 500 series does.
    bool takesFirmware() const { return knows<serialapi::FirmwareUpdateNvm>(); }

    /// Whether it has a loader that takes firmware; on older modules the same function is another one.
    bool hasLoader() const {
        constexpr Byte firstWithLoader = 7;
        return chipType >= firstWithLoader && knows<serialapi::EnterBootloader>();
    }

    /// Whether frames go out and come in by the functions of bridge libraries.
    bool isBridge() const { return knows<serialapi::SendDataBridge>(); }
};

/// The network that the module is in.
struct Network {
    explicit Network(Observer& observer) : nodes(observer) {}

    ModuleInformation module;
    HomeId homeId = 0;
    NodeId ownNode = 0;
    NodeTable nodes;

    ZwaveAddress address(NodeId node) const { return {homeId, static_cast<unsigned char>(node)}; }
};

} // namespace zorv::controller
