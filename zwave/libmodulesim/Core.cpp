// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/CoreImpl.h"

#include "zwave/libmodulesim/TimingImpl.h"

#include <algorithm>

namespace zorv::modulesim {

namespace api = serialapi;
namespace commands = serialapi::commands;

namespace {

constexpr Byte bridgeController = 7;
constexpr Byte singlecast = 0x00;
constexpr std::int8_t rssi = -79;
constexpr std::int8_t noRssi = 127;

} // namespace

Core::Core(SimulatedNetwork network) : described(std::move(network)), random(described.seed) {
    for (auto const& node : described.nodes) { addNode(node).join(described.homeId, node.id); }
    for (auto const& joiner : described.joining) { joining.emplace_back(&addNode(joiner.node), joiner.after); }
    leaving.assign(described.leaving.begin(), described.leaving.end());
    settle();
    resetSettings();
    session.start();
    tells(api::ApplicationUpdate::id);
    tells(isBridge() ? api::ApplicationCommandHandlerBridge::id : api::ApplicationCommandHandler::id);
    if (!isSeries500()) { tells(api::SerialApiStarted::id); }
}

/// The membership that the description tells.
void Core::settle() {
    membership.homeId = described.homeId;
    membership.node = described.controller;
    membership.isSecondary = described.secondaryTo.has_value();
    membership.isSis = described.isSis && !membership.isSecondary;
    if (described.isSis) { membership.updateController = described.secondaryTo.value_or(described.controller); }
    membership.nodes[membership.node] = ownRecord();
    for (auto const& node : nodes) {
        if (node.belongsTo(membership.homeId)) { membership.nodes[node.id()] = {node.protocolInformation(), {}}; }
    }
    for (auto& [id, record] : membership.nodes) { record.neighbours = neighboursOf(id); }
}

NodeRecord Core::ownRecord() const { return {{0x93, 0x16, 0x01, 0x02, 0x02, 0x01}, {}}; }

bool Core::isBridge() const noexcept {
    return described.libraryType ? *described.libraryType == bridgeController : !isSeries500();
}

// ---- the host

void Core::serve(Byte function, std::function<void(Bytes const&)> handler) {
    auto const& without = described.withoutFunctions;
    if (std::find(without.begin(), without.end(), function) != without.end()) { return; }
    known_.insert(function);
    handlers_[function] = std::move(handler);
}

api::BitMask Core::functions() const {
    api::BitMask mask{Bytes(32)};
    for (auto const function : known_) { mask.insert(function); }
    return mask;
}

void Core::send(api::Frame frame, api::Urgency urgency) { session.send(std::move(frame), urgency, now_); }

void Core::receive(Bytes const& bytes, TimePoint now) {
    tick(now);
    if (isStarting_) { return; } // deaf until it runs
    if (loader_) {
        time_ = now;
        auto const loader = loader_; // which may give the line back
        return loader(bytes);
    }
    session.receive(bytes, now);
    work(now);
}

void Core::tick(TimePoint now) {
    begin(now);
    while (auto due = agenda_.takeDue(now)) {
        time_ = due->first;
        due->second();
    }
    time_ = now;
    for (auto const& work : std::exchange(soon_, {})) { work(); }
    session.tick(now);
    work(now);
}

void Core::begin(TimePoint now) {
    now_ = now;
    if (std::exchange(hasBegun_, true)) { return; }
    time_ = now;
    faults.begin(now);
    for (auto& node : nodes) { planWakeUp(node); }
}

void Core::work(TimePoint now) {
    time_ = now;
    for (auto const& event : session.takeEvents()) {
        if (event.kind != api::SessionEvent::Kind::frame || event.frame.type != api::FrameType::request) { continue; }
        // A function that the module lacks is acknowledged, and that is all.
        auto const served = handlers_.find(event.frame.function);
        if (served != handlers_.end()) { served->second(event.frame.parameters); }
    }
}

Bytes Core::takeOutput() {
    auto output = std::exchange(output_, {});
    auto const line = session.takeOutput();
    output.insert(output.end(), line.begin(), line.end());
    return output;
}

std::optional<TimePoint> Core::deadline() const noexcept {
    if (!hasBegun_ || !soon_.empty()) { return TimePoint::min(); }
    auto const planned = agenda_.deadline();
    auto const line = session.deadline();
    if (!planned || (line && *line < *planned)) { return line; }
    return planned;
}

Agenda::Entry Core::after(Milliseconds delay, Agenda::Work work, Agenda::Owner owner) {
    return agenda_.plan(time_ + delay, owner, std::move(work));
}

// ---- restarts

void Core::abandonJobs() {
    agenda_.forget(Agenda::Owner::module);
    mode = NetworkMode::none;
    for (auto const& handler : resetHandlers_) { handler(); }
}

void Core::resetSettings() {
    constexpr int tick = 10; // the host tells times in 10 ms
    width = api::NodeIdWidth::one;
    isRadioOn = true;
    reportsTransmissions = true;
    times = {static_cast<Byte>(api::limits::moduleAckTime.count() / tick),
             static_cast<Byte>(api::limits::byteTime.count() / tick)};
    session.moduleTimes(api::limits::moduleAckTime, api::limits::byteTime);
}

void Core::enterLoader(std::function<void(Bytes const&)> loader) {
    output_ = takeOutput(); // the acknowledgement of what made it enter
    session.reset();
    abandonJobs();
    loader_ = std::move(loader);
}

void Core::say(Bytes const& bytes) { output_.insert(output_.end(), bytes.begin(), bytes.end()); }

void Core::restart(Byte reason) {
    loader_ = {};
    output_ = takeOutput(); // the acknowledgement of what made it restart
    session.reset();
    session.takeEvents();
    session.start();
    abandonJobs();
    resetSettings();
    hooks.restarting();
    isStarting_ = true;
    after(timing::starts + std::exchange(startsLater, Milliseconds(0)), [this, reason] {
        isStarting_ = false;
        if (isSeries500()) { return; } // says nothing when it starts
        report<api::SerialApiStarted>({reason, 0, 0x01, 0x02, 0x01, {}, Byte{0}});
    });
}

void Core::toFactoryDefaults() {
    membership = {};
    membership.homeId = freshHomeId();
    if (described.isSis) {
        membership.updateController = membership.node;
        membership.isSis = true;
    }
    membership.nodes[membership.node] = ownRecord();
    failed.clear();
    membershipChanged();
}

std::uint32_t Core::freshHomeId() { return 0xC0000000U + static_cast<std::uint32_t>(random()) % 0x3FFFFFFFU; }

// ---- nodes

SimulatedNode* Core::node(NodeId id) noexcept {
    auto const found = std::find_if(nodes.begin(), nodes.end(), [this, id](SimulatedNode const& candidate) {
        return candidate.belongsTo(membership.homeId, id);
    });
    return id == 0 || found == nodes.end() ? nullptr : &*found;
}

SimulatedNode& Core::addNode(NodeDescription description) {
    return nodes.emplace_back(std::move(description), described.seed);
}

void Core::include(SimulatedNode& node, NodeId id) {
    node.join(membership.homeId, id);
    node.stayAwake(time_);
    membership.nodes[id] = {node.protocolInformation(), {}};
    membershipChanged();
    planWakeUp(node);
}

void Core::exclude(NodeId id) {
    if (auto* const left = node(id)) { left->leave(); }
    membership.nodes.erase(id);
    failed.erase(std::remove(failed.begin(), failed.end(), id), failed.end());
    for (auto& [other, record] : membership.nodes) {
        auto& neighbours = record.neighbours;
        neighbours.erase(std::remove(neighbours.begin(), neighbours.end(), id), neighbours.end());
    }
    membershipChanged();
}

/// Those that its description names, or else whoever listens.
std::vector<NodeId> Core::neighboursOf(NodeId id) const {
    auto const self = std::find_if(nodes.begin(), nodes.end(), [this, id](SimulatedNode const& candidate) {
        return candidate.belongsTo(membership.homeId, id);
    });
    std::vector<NodeId> neighbours;
    if (self != nodes.end() && !self->description().neighbours.empty()) {
        for (auto const other : self->description().neighbours) {
            if (membership.nodes.count(other) != 0) { neighbours.push_back(other); }
        }
        return neighbours;
    }
    for (auto const& [other, record] : membership.nodes) {
        bool const listens = (record.information.capability & 0x80U) != 0;
        if (other != id && listens) { neighbours.push_back(other); }
    }
    return neighbours;
}

void Core::hear(SimulatedNode& from, Bytes const& command) {
    if (!isRadioOn || !from.belongsTo(membership.homeId)) { return; }
    if (isBridge()) {
        api::ApplicationCommandHandlerBridge::Callback heard{
            singlecast, membership.node, from.id(), command, {}, {}, {}, {}, {}};
        if (!isSeries500()) {
            heard.rssi = rssi;
            heard.securityKey = Byte{0};
            heard.sourcePower = noRssi;
            heard.sourceNoiseFloor = noRssi;
        }
        return report<api::ApplicationCommandHandlerBridge>(heard);
    }
    report<api::ApplicationCommandHandler>({singlecast, from.id(), command, {}, {}});
}

void Core::hearInformation(SimulatedNode const& from) {
    if (!isRadioOn || !from.belongsTo(membership.homeId)) { return; }
    api::ApplicationUpdate::Callback update;
    update.state = api::ApplicationUpdate::nodeInformation;
    update.node = from.id();
    update.information = from.information();
    report<api::ApplicationUpdate>(update);
}

void Core::wake(SimulatedNode& node) {
    if (node.description().dead) { return; }
    node.stayAwake(time_);
    hear(node, api::encodeCommand(commands::WakeUpNotification()));
}

void Core::planWakeUp(SimulatedNode& node) {
    if (node.description().kind != NodeKind::sleeping || !node.belongsTo(membership.homeId)) { return; }
    auto const interval = node.wakeUpInterval();
    if (interval <= Milliseconds::zero()) { return; }
    after(
        interval,
        [this, &node, plan = node.wakeUpPlan()] {
            // It has left, or was told another interval, which has its own plan.
            if (!node.belongsTo(membership.homeId) || node.wakeUpPlan() != plan) { return; }
            wake(node);
            planWakeUp(node);
        },
        Agenda::Owner::world);
}

/// A node that fails gets onto the module's list, one that answers off it.
void Core::noteReached(NodeId id, bool isAcknowledged) {
    if (id == membership.node || membership.nodes.count(id) == 0) { return; }
    auto const known = std::find(failed.begin(), failed.end(), id);
    if (isAcknowledged && known != failed.end()) { failed.erase(known); }
    if (isAcknowledged || known != failed.end()) { return; }
    failed.push_back(id);
    if (failed.size() > timing::failedNodes) { failed.pop_front(); }
}

} // namespace zorv::modulesim
