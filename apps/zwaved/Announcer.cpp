// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/Announcer.h"

#include "apps/zwaved/ModuleLink.h"
#include "apps/zwaved/makeControlCommand.h"

#include "platform/libzorvlogger/Logger.h"
#include "platform/libzorvlogger/printable.h"
#include "platform/libzorvshared/RawCommand.h"
#include "platform/libzwaved/Zwaved.h"
#include "zwave/libquillet/AddRemoveNodeMsg.h"
#include "zwave/libquillet/CommandClassMsg.h"
#include "zwave/libquillet/ConfigurationMsg.h"
#include "zwave/libquillet/DeviceStatusMsg.h"
#include "zwave/libquillet/FirmwareUpdateMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/NvmOpEvt.h"
#include "zwave/libquillet/ResetDefaultsMsg.h"
#include "zwave/libquillet/SocketStatusMsg.h"
#include "zwave/libquillet/SystemStatusEvt.h"

#include <boost/make_shared.hpp>

#include <set>

namespace zorv::daemon {

using controller::InterviewStage;
using controller::ModuleState;

namespace {

ConfigurationStatus::Enum toStatus(InterviewStage stage) {
    switch (stage) {
    case InterviewStage::start: return ConfigurationStatus::start;
    case InterviewStage::commandClasses: return ConfigurationStatus::commandClasses;
    case InterviewStage::manufacturer: return ConfigurationStatus::mfg;
    case InterviewStage::versions: return ConfigurationStatus::version;
    case InterviewStage::wakeUp: return ConfigurationStatus::wakeUp;
    case InterviewStage::interrupted: return ConfigurationStatus::interrupted;
    case InterviewStage::finished: return ConfigurationStatus::finish;
    }
    return ConfigurationStatus::unknown;
}

SerialManagerStatus::Enum toManagerStatus(ModuleState state) {
    switch (state) {
    case ModuleState::absent: return SerialManagerStatus::sessionLayerStopped;
    case ModuleState::starting: return SerialManagerStatus::sessionLayerRestart;
    case ModuleState::ready: return SerialManagerStatus::sessionLayerRunning;
    case ModuleState::silent: break;
    }
    return SerialManagerStatus::idle;
}

} // namespace

bool Announcer::isEvent(std::string const& name) {
    static std::set<std::string> const names{AddRemoveNodeMsg::NAME,  CommandClassMsg::NAME,    ConfigurationMsg::NAME,
                                             ControlCommandMsg::NAME, DaemonStatusMsg::NAME,    DeviceStatusMsg::NAME,
                                             FirmwareUpdateMsg::NAME, NodeInformationMsg::NAME, NvmOpEvt::NAME,
                                             ResetDefaultsMsg::NAME,  SerialManagerEvt::NAME,   SocketStatusMsg::NAME,
                                             SystemStatusEvt::NAME};
    return name == MessageBus::everyEvent || names.count(name) != 0;
}

void Announcer::announce(MessageBus::MessagePtr const& message) { bus_.publish(message->name(), message); }

// ---- the state of the whole

SystemStatus::Enum Announcer::systemStatus() const noexcept {
    if (isStopping_) { return SystemStatus::stopping; }
    if (isUpdating_) { return SystemStatus::updating; }
    switch (link_.controller().state()) {
    case ModuleState::starting: return SystemStatus::starting;
    case ModuleState::ready: return SystemStatus::ready;
    case ModuleState::absent:
    case ModuleState::silent: break;
    }
    return SystemStatus::degraded;
}

DaemonStatus::Enum Announcer::daemonStatus() const noexcept {
    switch (link_.controller().state()) {
    case ModuleState::starting: return DaemonStatus::notReady;
    case ModuleState::ready: return DaemonStatus::notSecure;
    case ModuleState::absent:
    case ModuleState::silent: break;
    }
    return DaemonStatus::moduleError;
}

DaemonDetail::Enum Announcer::daemonDetail() const noexcept {
    switch (link_.controller().state()) {
    case ModuleState::absent: return DaemonDetail::moduleNotPresent;
    case ModuleState::silent: return DaemonDetail::moduleCommFailure;
    case ModuleState::starting:
    case ModuleState::ready: break;
    }
    return DaemonDetail::noDetail;
}

void Announcer::updating(bool isUpdating) {
    isUpdating_ = isUpdating;
    announceSystem();
}

void Announcer::stopping() {
    isStopping_ = true;
    announceSystem();
}

void Announcer::announceSystem() {
    auto const status = systemStatus();
    if (status == lastSystemStatus_) { return; }
    lastSystemStatus_ = status;
    announce(SystemStatusEvt::create(status));
    if (systemStatusHandler_) { systemStatusHandler_(status); }
}

void Announcer::moduleStateChanged(ModuleState state) {
    auto const& network = link_.controller().network();
    announce(boost::make_shared<SerialManagerEvt>(toManagerStatus(state), 0U));
    announce(DaemonStatusMsg::create(network.address(network.ownNode), daemonStatus(), daemonDetail()));
    announceSystem();
}

void Announcer::loaderChanged(bool isRunning, unsigned int percent) {
    auto const status = isRunning ? SerialManagerStatus::bootloaderRunning : SerialManagerStatus::bootloaderStopped;
    announce(boost::make_shared<SerialManagerEvt>(status, percent));
}

void Announcer::turnEnded() {
    auto const& network = link_.controller().network();
    auto const own = network.address(network.ownNode);
    if (own == own_) { return; }
    own_ = own;
    Zwaved::instance().controller({own.homeId(), own.nodeId()});
}

// ---- nodes

void Announcer::nodeAdded(Device const& device) {
    recorder_.changed(device);
    announceDevice(device);
}

void Announcer::nodeChanged(Device const& device) {
    recorder_.changed(device);
    announceDevice(device);
}

void Announcer::nodeRemoved(Device const& device) {
    recorder_.removed(device.address());
    announced_.erase(device.address());
    announce(boost::make_shared<AddRemoveNodeMsg>(AddRemoveOp::remove, false, false, ZResult::success, 0,
                                                  boost::make_shared<Device>(device)));
}

void Announcer::announceDevice(Device const& device) {
    if (bus_.hasSubscribers(NodeInformationMsg::NAME)) {
        announce(NodeInformationMsg::create(boost::make_shared<Device>(device)));
    }
    Statuses const statuses{device.deviceNetworkStatus(), device.deviceStatus(), device.deviceLights(),
                            device.securityStatus(), device.wakeStatus()};
    auto const [known, isNew] = announced_.try_emplace(device.address(), statuses);
    if (!isNew && known->second == statuses) { return; }
    known->second = statuses;
    announce(DeviceStatusMsg::create(device.address(), device.deviceNetworkStatus(), device.deviceStatus(),
                                     device.deviceLights(), device.securityStatus(), device.wakeStatus(),
                                     MessageRole::report));
}

void Announcer::commandReceived(controller::ReceivedCommand const& command) {
    announce(CommandClassMsg::create(static_cast<unsigned char>(command.source),
                                     static_cast<ReceivedStatus::Enum>(command.status),
                                     boost::make_shared<RawCommand>(command.data), MessageRole::report));
}

void Announcer::interviewed(Device const& device, InterviewStage stage) {
    auto const result = stage == InterviewStage::finished      ? ZResult::success
                        : stage == InterviewStage::interrupted ? ZResult::failure
                                                               : ZResult::inProgress;
    announce(ConfigurationMsg::create(toStatus(stage), boost::make_shared<Device>(device), result));
}

void Announcer::noted(std::string const& text) {
    Logger::log(LogLevel::info, "zwaved: " + printable(text), BOOST_CURRENT_LOCATION);
}

void Announcer::traced(serialapi::Side sender, serialapi::Frame const& frame) {
    if (!bus_.hasSubscribers(ControlCommandMsg::NAME)) { return; }
    announce(makeControlCommand(sender, frame));
}

} // namespace zorv::daemon
