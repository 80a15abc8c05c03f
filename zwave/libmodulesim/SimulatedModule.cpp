// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/SimulatedModule.h"

#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libmodulesim/FamiliesImpl.h"
#include "zwave/libmodulesim/FaultyLineImpl.h"

#include <utility>

namespace zorv::modulesim {

SimulatedModule::SimulatedModule(SimulatedNetwork network)
    : core_(std::make_unique<Core>(std::move(network))), line_(std::make_unique<FaultyLine>(*core_)) {
    serveInformation(*core_);
    serveSettings(*core_);
    serveSending(*core_);
    serveRoutes(*core_);
    serveInclusion(*core_);
    serveExclusion(*core_);
    serveLearnMode(*core_);
    serveFailedNodes(*core_);
    serveRoles(*core_);
    serveMemory(*core_);
    serveFirmware(*core_);
    serveLoader(*core_);
}

SimulatedModule::~SimulatedModule() = default;

void SimulatedModule::start() { core_->session.start(); }

void SimulatedModule::receive(Bytes const& bytes, TimePoint now) { line_->receive(bytes, now); }

void SimulatedModule::tick(TimePoint now) { line_->tick(now); }

Bytes SimulatedModule::takeOutput() { return line_->takeOutput(); }

std::optional<TimePoint> SimulatedModule::deadline() const noexcept { return line_->deadline(); }

// ---- what people do

void SimulatedModule::join(NodeDescription node, Milliseconds after) {
    core_->joining.emplace_back(&core_->addNode(std::move(node)), after);
    core_->soon([core = core_.get()] {
        core->hooks.joinerCame();
        core->hooks.replacerCame();
    });
}

void SimulatedModule::leave(NodeId node, Milliseconds after) {
    core_->leaving.push_back({node, after});
    core_->soon([core = core_.get()] { core->hooks.leaverCame(); });
}

void SimulatedModule::pressButton(NodeId id) {
    core_->soon([core = core_.get(), id] {
        if (auto const* const node = core->node(id)) { core->hearInformation(*node); }
    });
}

void SimulatedModule::wake(NodeId id) {
    core_->soon([core = core_.get(), id] {
        if (auto* const node = core->node(id)) { core->wake(*node); }
    });
}

void SimulatedModule::command(NodeId id, Bytes const& command) {
    core_->soon([core = core_.get(), id, command] {
        if (auto* const node = core->node(id)) { core->hear(*node, command); }
    });
}

void SimulatedModule::die(NodeId id) {
    core_->soon([core = core_.get(), id] {
        if (auto* const node = core->node(id)) { node->die(); }
    });
}

void SimulatedModule::restart() {
    constexpr Byte byWatchdog = 3;
    core_->soon([core = core_.get()] { core->restart(byWatchdog); });
}

// ---- what is so

std::uint32_t SimulatedModule::homeId() const noexcept { return core_->membership.homeId; }

NodeId SimulatedModule::node() const noexcept { return core_->membership.node; }

std::vector<NodeId> SimulatedModule::nodes() const {
    std::vector<NodeId> ids;
    for (auto const& [id, record] : core_->membership.nodes) { ids.push_back(id); }
    return ids;
}

bool SimulatedModule::isInMode() const noexcept { return core_->mode != NetworkMode::none; }

bool SimulatedModule::isRadioOn() const noexcept { return core_->isRadioOn; }

bool SimulatedModule::isThere() const noexcept { return line_->isThere(); }

serialapi::SessionCounters SimulatedModule::counters() const noexcept { return core_->session.counters(); }

void SimulatedModule::trace(serialapi::SessionLayer::Trace trace) { core_->session.trace(std::move(trace)); }

} // namespace zorv::modulesim
