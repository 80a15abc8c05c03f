// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/StartUp.h"

#include "platform/libzorvshared/nodeIds.h"

#include <algorithm>
#include <utility>

namespace zorv::controller {

using serialapi::CallEnd;
using serialapi::CallHandlers;
using Setup = serialapi::SerialApiSetup;

namespace {

constexpr unsigned int mostRestarts = 3; // of a module that cannot be asked through

// What our own node says of itself.
constexpr Byte listening = 0x01;
constexpr Byte staticController = 0x02;
constexpr Byte centralController = 0x01;

/// The library types whose modules speak for a network.
bool isController(Byte libraryType) {
    constexpr Byte staticLibrary = 1;
    constexpr Byte portableLibrary = 2;
    constexpr Byte installerLibrary = 5;
    constexpr Byte bridgeLibrary = 7;
    return libraryType == staticLibrary || libraryType == portableLibrary || libraryType == installerLibrary ||
           libraryType == bridgeLibrary;
}

} // namespace

std::vector<StartUp::Step> const StartUp::steps{&StartUp::awaitStart,
                                                &StartUp::askVersion,
                                                &StartUp::askCapabilities,
                                                &StartUp::leaveModes,
                                                &StartUp::askSetupCommands,
                                                &StartUp::setNodeIdWidth,
                                                &StartUp::wantTransmitReports,
                                                &StartUp::askRegion,
                                                &StartUp::askProtocol,
                                                &StartUp::askRoles,
                                                &StartUp::askSucNode,
                                                &StartUp::askIds,
                                                &StartUp::tellNodeInformation,
                                                &StartUp::askNodes,
                                                &StartUp::askLongRangeNodes,
                                                &StartUp::askNextNode,
                                                &StartUp::fillTable};

void StartUp::run() { next(); }

void StartUp::next() {
    noStep();
    awaitsStart_ = false;
    if (position_ == steps.size()) { return done(); }
    (this->*steps[position_++])();
}

/// Whether it was asked to or not: what was read before does not count any more.
bool StartUp::restarted() {
    if (!awaitsStart_) {
        if (++restarts_ > mostRestarts) {
            fail("the module restarts again and again");
            return true;
        }
        position_ = 1;
        segment_ = 0;
        found_.clear();
    }
    next();
    return true;
}

/// What was asked before a restart is of no use after it: its end would go on beside what is asked now.
template <class F>
void StartUp::ask(typename F::Request request, std::function<void(typename F::Response const&)> take) {
    auto const isStale = [this, restarts = restarts_] { return restarts != restarts_; };
    CallHandlers<F> handlers;
    handlers.response = [isStale, take = std::move(take)](typename F::Response const& response) {
        if (take && !isStale()) { take(response); }
    };
    handlers.end = [this, isStale](CallEnd end) {
        if (isStale()) { return; }
        if (end == CallEnd::done) { return next(); }
        bool const isSilent = end == CallEnd::notAcknowledged || end == CallEnd::noResponse;
        if (isSilent && now() < patience_) {
            --position_;
            return next();
        }
        isAcknowledged_ = end != CallEnd::notAcknowledged;
        fail(std::string(F::name) + ": " + complaint(end));
    };
    call<F>(std::move(request), std::move(handlers));
}

template <class F>
void StartUp::askIfKnown(typename F::Request request, std::function<void(typename F::Response const&)> take) {
    if (!information().knows<F>()) { return next(); }
    ask<F>(std::move(request), std::move(take));
}

// ---- the steps

void StartUp::awaitStart() {
    if (restart_ == Restart::none) { return next(); }
    awaitsStart_ = true;
    if (restart_ == Restart::reload || restart_ == Restart::byLoader) { patience_ = now() + limits::loaderTime; }
    if (restart_ == Restart::ofItself || restart_ == Restart::byLoader) { return step(limits::restartTime); }
    tell<serialapi::SoftReset>({}, [this](CallEnd end) {
        if (end != CallEnd::done) { return fail(complaint(end)); }
        step(limits::restartTime);
    });
}

void StartUp::askVersion() {
    network().module = {};
    host().module().nodeIdWidth(serialapi::NodeIdWidth::one);
    ask<serialapi::GetVersion>({}, [this](auto const& response) {
        information().version = response.version;
        information().libraryType = response.libraryType;
        if (!isController(response.libraryType)) { fail("the module is no controller"); }
    });
}

void StartUp::askCapabilities() {
    ask<serialapi::GetCapabilities>({}, [this](auto const& response) { information().capabilities = response; });
}

/// Without callback ids: whoever began a mode is not there any more, and nobody waits for its end.
void StartUp::leaveModes() {
    tell<serialapi::AddNodeToNetwork>({serialapi::mode::stop, std::nullopt, std::nullopt});
    tell<serialapi::RemoveNodeFromNetwork>({serialapi::mode::stop, std::nullopt});
    if (information().knows<serialapi::ControllerChange>()) {
        tell<serialapi::ControllerChange>({serialapi::mode::stop, std::nullopt});
    }
    if (information().knows<serialapi::SetLearnMode>()) { tell<serialapi::SetLearnMode>({0, Byte{0}}); }
    if (information().knows<serialapi::NvmBackupRestore>()) {
        tell<serialapi::NvmBackupRestore>({serialapi::NvmBackupRestore::close, 0, 0, {}});
    }
    if (information().knows<serialapi::NvmExtendedBackupRestore>()) {
        tell<serialapi::NvmExtendedBackupRestore>({serialapi::NvmExtendedBackupRestore::close, 0, 0, {}});
    }
    if (information().knows<serialapi::SetRfReceiveMode>()) { tell<serialapi::SetRfReceiveMode>({1}); }
    next();
}

void StartUp::askSetupCommands() {
    askIfKnown<Setup>({Setup::supportedCommands},
                      [this](auto const& response) { information().setupCommands = response.value; });
}

/// An earlier host may have asked for two bytes; ours are the nodes that fit into one.
void StartUp::setNodeIdWidth() {
    if (!hasSetup(Setup::setNodeIdWidth)) { return next(); }
    Setup::Request request;
    request.command = Setup::setNodeIdWidth;
    request.value = 1;
    ask<Setup>(request, {});
}

void StartUp::wantTransmitReports() {
    if (!hasSetup(Setup::setTxStatusReport)) { return next(); }
    Setup::Request request;
    request.command = Setup::setTxStatusReport;
    request.value = 1;
    ask<Setup>(request, {});
}

void StartUp::askRegion() {
    if (!hasSetup(Setup::getRegion)) { return next(); }
    ask<Setup>({Setup::getRegion}, [this](auto const& response) {
        if (response.command == Setup::getRegion) { information().region = response.value; }
    });
}

void StartUp::askProtocol() {
    askIfKnown<serialapi::GetProtocolVersion>({}, [this](auto const& response) { information().protocol = response; });
}

void StartUp::askRoles() {
    ask<serialapi::GetControllerCapabilities>(
        {}, [this](auto const& response) { information().roles = response.capabilities; });
}

void StartUp::askSucNode() {
    askIfKnown<serialapi::GetSucNodeId>({}, [this](auto const& response) { information().sucNode = response.node; });
}

void StartUp::askIds() {
    ask<serialapi::MemoryGetId>({}, [this](auto const& response) {
        network().homeId = response.homeId;
        network().ownNode = response.node;
    });
}

void StartUp::tellNodeInformation() {
    if (information().knows<serialapi::ApplicationNodeInformation>()) {
        tell<serialapi::ApplicationNodeInformation>({listening, staticController, centralController, {}});
    }
    next();
}

void StartUp::askNodes() {
    ask<serialapi::GetInitData>({}, [this](auto const& response) {
        information().apiVersion = response.apiVersion;
        information().chipType = response.chipType;
        information().chipVersion = response.chipVersion;
        nodes_ = response.nodes.numbers();
        std::reverse(nodes_.begin(), nodes_.end());
    });
}

void StartUp::askLongRangeNodes() {
    constexpr Byte lastSegment = 3;
    askIfKnown<serialapi::GetLrNodes>({segment_}, [this](auto const& response) {
        serialapi::BitMask const mask{response.mask};
        information().longRangeNodes += static_cast<unsigned int>(mask.numbers().size());
        if (response.more != 0 && segment_++ < lastSegment) { --position_; } // comes back for the next ones
    });
}

void StartUp::askNextNode() {
    if (nodes_.empty()) { return next(); }
    --position_; // comes back for the others
    auto const node = nodes_.back();
    nodes_.pop_back();
    ask<serialapi::GetNodeProtocolInfo>({node}, [this, node](auto const& response) {
        if (response.generic != 0 && isNodeId(node)) { found_[node] = deviceInfo(response); }
    });
}

/// The table tells the observer what is new, and what has gone.
void StartUp::fillTable() {
    auto& table = network().nodes;
    auto const known = table.devices();
    for (auto const& [node, device] : known) {
        if (found_.count(node) == 0 || device.address().homeId() != network().homeId) { table.remove(node); }
    }
    for (auto const& [node, info] : found_) {
        if (table.find(node) != nullptr) { continue; }
        auto const address = network().address(node);
        auto const earlier = remembered_.find(address);
        Device device = earlier != remembered_.end() ? earlier->second : Device(address, info);
        device.deviceInfo({device.deviceInfo().manufacturer(), info.protocolInfo(), info.isSlave(), info.isVirtual()});
        device.securityStatus(SecurityStatus::insecure);
        if (device.isSleeping()) { device.wakeStatus(WakeStatus::asleep); }
        if (node == network().ownNode) {
            device.deviceStatus(DeviceStatus::ready);
            device.deviceNetworkStatus(DeviceNetworkStatus::online);
        }
        table.add(device);
    }
    if (information().longRangeNodes > 0) {
        host().observer().noted(std::to_string(information().longRangeNodes) +
                                " long range nodes have no place in the node table");
    }
    next();
}

} // namespace zorv::controller
