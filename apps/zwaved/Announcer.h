// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/Recorder.h"

#include "platform/libmessage_bus/MessageBus.h"
#include "platform/libzorvshared/SystemStatus.h"
#include "zwave/libcontroller/Observer.h"
#include "zwave/libquillet/DaemonStatusMsg.h"
#include "zwave/libquillet/SerialManagerEvt.h"

#include <map>
#include <string>
#include <tuple>

namespace zorv::daemon {

class ModuleLink;

/// Makes events of what the controller finds out, and has the recorder keep it.
class Announcer final : public controller::Observer {
public:
    /// The link is looked at only when the controller has found something out.
    Announcer(MessageBus& bus, ModuleLink const& link, Recorder& recorder)
        : bus_(bus), link_(link), recorder_(recorder) {}

    /// Whether clients can subscribe to events of this name.
    static bool isEvent(std::string const& name);

    /// Sends a message to all who subscribed to its class.
    void announce(MessageBus::MessagePtr const& message);

    // ---- the state of the whole

    SystemStatus::Enum systemStatus() const noexcept;
    DaemonStatus::Enum daemonStatus() const noexcept;
    DaemonDetail::Enum daemonDetail() const noexcept;

    /// Has each change of the system's status told.
    void systemStatus(std::function<void(SystemStatus::Enum)> handler) { systemStatusHandler_ = std::move(handler); }

    /// The module is given other firmware, or another memory.
    void updating(bool isUpdating);
    void stopping();

    // ---- Observer
    void moduleStateChanged(controller::ModuleState state) override;
    void loaderChanged(bool isRunning, unsigned int percent) override;
    void nodeAdded(Device const& device) override;
    void nodeChanged(Device const& device) override;
    void nodeRemoved(Device const& device) override;
    void commandReceived(controller::ReceivedCommand const& command) override;
    void interviewed(Device const& device, controller::InterviewStage stage) override;
    void noted(std::string const& text) override;

    /// To be called when the controller's turn is over: the module may be in another network.
    void turnEnded();

    /// A frame of the serial link.
    void traced(serialapi::Side sender, serialapi::Frame const& frame);

private:
    using Statuses = std::tuple<DeviceNetworkStatus::Enum, DeviceStatus::Enum, DeviceLights::Enum, SecurityStatus::Enum,
                                WakeStatus::Enum>;

    void announceDevice(Device const& device);
    void announceSystem();

    MessageBus& bus_;
    ModuleLink const& link_;
    Recorder& recorder_;
    std::map<ZwaveAddress, Statuses> announced_;
    ZwaveAddress own_; ///< of the module
    SystemStatus::Enum lastSystemStatus_ = SystemStatus::unknown;
    std::function<void(SystemStatus::Enum)> systemStatusHandler_;
    bool isUpdating_ = false;
    bool isStopping_ = false;
};

} // namespace zorv::daemon
