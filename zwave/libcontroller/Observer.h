// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/Device.h"
#include "zwave/libserialapi/functions/Fields.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zorv::controller {

using serialapi::Byte;
using serialapi::Bytes;
using serialapi::NodeId;

/// How the controller is with its module.
enum class ModuleState {
    absent,   ///< no port is open
    starting, ///< it is being asked who it is
    ready,
    silent ///< it does not answer; it is asked again and again
};

/// A command that came from a node.
struct ReceivedCommand {
    NodeId source = 0;
    Bytes data;                                     ///< command class, command, parameters
    Byte status = 0;                                ///< 0x04 broadcast, 0x08 multicast, 0x10 explorer frame
    std::optional<std::int8_t> rssi = std::nullopt; ///< dBm
};

/// How far the interview of a node has come.
enum class InterviewStage { start, commandClasses, manufacturer, versions, wakeUp, interrupted, finished };

/// Hears what a controller finds out by itself. Called within the controller's receive(), tick() and their like; it may
/// look at the controller, but has to leave what it wants of it for later.
class Observer {
public:
    virtual ~Observer() = default;

    virtual void moduleStateChanged(ModuleState /*state*/) {}

    /// The module's loader has the line, and so much of an image; or it has given the line back.
    virtual void loaderChanged(bool /*isRunning*/, unsigned int /*percent*/) {}
    virtual void nodeAdded(Device const& /*device*/) {}
    virtual void nodeChanged(Device const& /*device*/) {}
    virtual void nodeRemoved(Device const& /*device*/) {}
    virtual void commandReceived(ReceivedCommand const& /*command*/) {}
    virtual void interviewed(Device const& /*device*/, InterviewStage /*stage*/) {}

    /// A line for the log: what nobody asked for and somebody may want to know.
    virtual void noted(std::string const& /*text*/) {}
};

} // namespace zorv::controller
