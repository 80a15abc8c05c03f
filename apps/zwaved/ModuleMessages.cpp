// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/ModuleMessages.h"

#include "apps/zwaved/makeControlCommand.h"

#include "platform/libzorvlogger/Logger.h"
#include "zwave/libcontroller/jobs/RawCall.h"

#include <memory>
#include <vector>

namespace zorv::daemon {

using controller::ModuleState;
using serialapi::SessionStatus;

namespace {

constexpr unsigned int largestFunction = 0xFF;

ControllerRole::Enum roleOf(controller::Network const& network) {
    int const flags = network.module.roles;
    bool const isSuc = (flags & ControllerCapabilities::suc) != 0;
    bool const hasSis = (flags & ControllerCapabilities::sisPresent) != 0;
    if (isSuc) { return hasSis ? ControllerRole::sis : ControllerRole::suc; }
    if ((flags & ControllerCapabilities::secondary) == 0) { return ControllerRole::primary; }
    return hasSis ? ControllerRole::inclusion : ControllerRole::secondary;
}

SerialCapabilities capabilitiesOf(controller::ModuleInformation const& module) {
    auto const& told = module.capabilities;
    std::vector<ZwApiCommand::Enum> commands;
    for (unsigned int function = 1; function <= largestFunction; ++function) {
        if (told.functions.contains(function)) { commands.push_back(static_cast<ZwApiCommand::Enum>(function)); }
    }
    return {told.version,     told.revision,  static_cast<ManufacturerId::Enum>(told.manufacturer),
            told.productType, told.productId, commands};
}

DeviceStatus::Enum statusOf(ModuleState state) {
    switch (state) {
    case ModuleState::starting: return DeviceStatus::configuring;
    case ModuleState::ready: return DeviceStatus::ready;
    case ModuleState::silent: return DeviceStatus::fault;
    case ModuleState::absent: break;
    }
    return DeviceStatus::unknown;
}

SessionLayerStatus::Enum toStatus(SessionStatus status) {
    switch (status) {
    case SessionStatus::unknown: return SessionLayerStatus::unknown;
    case SessionStatus::idle: return SessionLayerStatus::idle;
    case SessionStatus::frameNormal: return SessionLayerStatus::frameNormal;
    case SessionStatus::frameChecksumError: return SessionLayerStatus::frameChecksumError;
    case SessionStatus::frameRetriesFailedError: return SessionLayerStatus::frameRetriesFailedError;
    case SessionStatus::frameTimeoutError: return SessionLayerStatus::frameTimeoutError;
    }
    return SessionLayerStatus::unknown;
}

} // namespace

ModuleMessages::ModuleMessages(Context const& context) : context_(context) {
    auto& requests = context_.requests;
    requests.handle<ControllerInfoMsg>([this](auto const& request, PeerId from) { controllerInfo(request, from); });
    requests.handle<SessionLayerMsg>([this](auto const& request, PeerId from) { sessionLayer(request, from); });
    requests.listen<ControlCommandMsg>([this](auto const& message, PeerId from) { controlCommand(message, from); });
}

void ModuleMessages::controllerInfo(boost::shared_ptr<ControllerInfoMsg> const& request, PeerId from) {
    auto const& controller = context_.link.controller();
    auto const& network = controller.network();
    auto const& module = network.module;
    bool const isKnown = controller.state() == ModuleState::ready;
    auto const* const own = network.nodes.find(network.ownNode);
    auto const queues = controller.queues();
    std::chrono::duration<double> const uptime = std::chrono::steady_clock::now() - started_;
    context_.bus.answer(
        from, ControllerInfoMsg::create(
                  request, request->displayOptions(),
                  isKnown ? static_cast<ModuleType::Enum>(module.libraryType) : ModuleType::unknown, module.version,
                  static_cast<unsigned char>(module.sucNode), static_cast<ControllerCapabilities::Enum>(module.roles),
                  isKnown ? roleOf(network) : ControllerRole::unknown, capabilitiesOf(module),
                  own != nullptr ? own->deviceInfo() : DeviceInfo(),
                  static_cast<unsigned int>(network.nodes.devices().size()), static_cast<unsigned int>(queues.sleepers),
                  static_cast<unsigned int>(queues.jobs), static_cast<unsigned int>(queues.waiting),
                  statusOf(controller.state()), SecurityStatus::insecure, uptime.count()));
}

/// What is there of a module counts before what became of its last frame.
SessionLayerStatus::Enum ModuleMessages::sessionStatus() const {
    auto const& controller = context_.link.controller();
    if (controller.state() == ModuleState::absent) { return SessionLayerStatus::moduleNotPresent; }
    return toStatus(controller.link().session().status());
}

void ModuleMessages::sessionLayer(boost::shared_ptr<SessionLayerMsg> const& request, PeerId from) {
    if (request->op() == SessionLayerOp::status) {
        return context_.bus.answer(from, SessionLayerMsg::create(request, ZResult::success, sessionStatus()));
    }
    auto const answer = [this, request](ZResult::Enum result) {
        auto const status = result == ZResult::success ? SessionLayerStatus::frameNormal : sessionStatus();
        return SessionLayerMsg::create(request, result, status);
    };
    auto const job = std::make_shared<controller::RawCall>(serialapi::GetVersion::id, serialapi::Bytes(),
                                                           controller::RawCall::Heard());
    context_.requests.begin<SessionLayerMsg>(request, from, Requests::Lease::none, job, answer);
}

/// It has no result, so that what goes wrong with it is only logged.
void ModuleMessages::controlCommand(boost::shared_ptr<ControlCommandMsg> const& message, PeerId from) {
    auto const refuse = [](std::string const& reason) {
        Logger::log(LogLevel::warn, "zwaved: ControlCommandMsg is not sent: " + reason, BOOST_CURRENT_LOCATION);
    };
    auto const& data = message->data();
    constexpr std::size_t head = 2;
    if (!mayAdminister(*message)) { return refuse("its sender may not administer"); }
    if (data.size() < head || data[0] != ControlCommandOp::request) { return refuse("it is not a request"); }
    auto const heard = [this, message, from](serialapi::Frame const& frame) {
        auto const answer = makeControlCommand(serialapi::Side::module, frame);
        answer->setResponse(*message);
        context_.bus.send(from, answer);
    };
    auto const job =
        std::make_shared<controller::RawCall>(data[1], serialapi::Bytes(data.begin() + head, data.end()), heard);
    auto const submission = context_.link.submit(job, {});
    if (!submission) { refuse(submission.reason); }
}

} // namespace zorv::daemon
