// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/SimulatedNodeImpl.h"

#include "zwave/libmodulesim/TimingImpl.h"

#include <algorithm>
#include <utility>

namespace zorv::modulesim {

namespace api = serialapi;
namespace commands = serialapi::commands;

namespace {

namespace commandClass {

constexpr Byte basic = 0x20;
constexpr Byte binarySwitch = 0x25;
constexpr Byte manufacturerSpecific = 0x72;
constexpr Byte battery = 0x80;
constexpr Byte wakeUp = 0x84;
constexpr Byte association = 0x85;
constexpr Byte version = 0x86;

} // namespace commandClass

constexpr Byte mostLifelineNodes = 5;
constexpr Byte on = 0xFF;

Byte bits(bool condition, unsigned int value) { return condition ? static_cast<Byte>(value) : Byte{0}; }

template <class C> std::vector<Bytes> one(C const& command) { return {api::encodeCommand(command)}; }

} // namespace

SimulatedNode::SimulatedNode(NodeDescription description, std::uint32_t seed)
    : description_(std::move(description)), wakeUp_{description_.wakeUpSeconds, 0} {
    std::seed_seq seeds{seed, static_cast<std::uint32_t>(description_.id)};
    random_.seed(seeds);
}

api::NodeInformation SimulatedNode::information() const {
    return {description_.basic, description_.generic, description_.specific, description_.commandClasses};
}

api::GetNodeProtocolInfo::Response SimulatedNode::protocolInformation() const {
    bool const listens = description_.kind == NodeKind::listening;
    bool const isFrequent = description_.kind == NodeKind::frequentlyListening;
    api::GetNodeProtocolInfo::Response info;
    info.capability = static_cast<Byte>(0x53U | bits(listens, 0x80)); // routing, 40k, the third protocol
    info.security = static_cast<Byte>(0x94U | bits(!isController(), 0x08) | bits(isFrequent, 0x40) |
                                      bits(isController(), 0x02)); // optional functions, beams, a specific class
    info.reserved = 0x01;                                          // 100k
    info.basic = description_.basic;
    info.generic = description_.generic;
    info.specific = description_.specific;
    return info;
}

void SimulatedNode::join(std::uint32_t homeId, NodeId id) noexcept {
    homeId_ = homeId;
    id_ = id;
    lifeline_.clear();
    wakeUp_ = {description_.wakeUpSeconds, 0};
    ++wakeUpPlan_;
}

bool SimulatedNode::hears(TimePoint now) const noexcept {
    if (description_.dead) { return false; }
    return description_.kind != NodeKind::sleeping || now < awakeUntil_;
}

void SimulatedNode::stayAwake(TimePoint now) noexcept { awakeUntil_ = std::max(awakeUntil_, now + timing::staysAwake); }

SimulatedNode::Outcome SimulatedNode::reach(TimePoint now, Milliseconds retransmission) {
    if (!hears(now)) { return {false, retransmission}; }
    // The library's distributions differ between implementations; the generator's numbers do not.
    auto const isLost = static_cast<double>(random_()) < description_.loss * 4294967296.0;
    auto const spread = static_cast<std::uint32_t>(2 * description_.jitter.count() + 1);
    Milliseconds const jitter(static_cast<std::uint32_t>(random_()) % spread);
    if (isLost) { return {false, retransmission}; }
    if (description_.kind == NodeKind::sleeping) { stayAwake(now); }
    auto const beam = description_.kind == NodeKind::frequentlyListening ? timing::beam : Milliseconds(0);
    return {true, std::max(Milliseconds(0), description_.latency + jitter - description_.jitter) + beam};
}

// ---- its application

Byte SimulatedNode::versionOf(Byte commandClass) const noexcept {
    auto const& known = description_.commandClasses;
    bool const isKnown =
        commandClass == commandClass::basic || std::find(known.begin(), known.end(), commandClass) != known.end();
    if (!isKnown) { return 0; }
    auto const version = description_.classVersions.find(commandClass);
    return version == description_.classVersions.end() ? description_.classVersion : version->second;
}

std::vector<Bytes> SimulatedNode::take(Bytes const& command) {
    if (command.empty() || versionOf(command[0]) == 0) { return {}; }
    switch (command[0]) {
    case commandClass::basic:
    case commandClass::binarySwitch: return takeSwitch(command);
    case commandClass::manufacturerSpecific: {
        if (!api::decodeCommand<commands::ManufacturerSpecificGet>(command)) { return {}; }
        auto const& product = description_.product;
        return one(
            commands::ManufacturerSpecificReport({product.manufacturer, product.productType, product.productId}));
    }
    case commandClass::battery:
        if (!api::decodeCommand<commands::BatteryGet>(command)) { return {}; }
        return one(commands::BatteryReport({description_.batteryLevel}));
    case commandClass::wakeUp: return takeWakeUp(command);
    case commandClass::association: return takeAssociation(command);
    case commandClass::version: return takeVersion(command);
    default: return {}; // of another class that it says it has, it takes what comes and keeps silent
    }
}

std::vector<Bytes> SimulatedNode::takeSwitch(Bytes const& command) {
    auto const set = [this](api::Setting const& setting) { level_ = setting.value == 0 ? Byte{0} : on; };
    if (auto const basic = api::decodeCommand<commands::BasicSet>(command)) { set(*basic); }
    if (auto const binary = api::decodeCommand<commands::BinarySwitchSet>(command)) { set(*binary); }
    if (api::decodeCommand<commands::BasicGet>(command)) { return one(commands::BasicReport({level_, {}, {}})); }
    if (api::decodeCommand<commands::BinarySwitchGet>(command)) {
        return one(commands::BinarySwitchReport({level_, {}, {}}));
    }
    return {};
}

std::vector<Bytes> SimulatedNode::takeWakeUp(Bytes const& command) {
    if (auto const set = api::decodeCommand<commands::WakeUpIntervalSet>(command)) {
        wakeUp_ = *set;
        ++wakeUpPlan_;
    }
    if (api::decodeCommand<commands::WakeUpNoMoreInformation>(command)) { fallAsleep(); }
    if (api::decodeCommand<commands::WakeUpIntervalGet>(command)) {
        return one(commands::WakeUpIntervalReport(wakeUp_));
    }
    if (versionOf(commandClass::wakeUp) >= 2 && api::decodeCommand<commands::WakeUpCapabilitiesGet>(command)) {
        return one(commands::WakeUpCapabilitiesReport(
            {timing::shortestWakeUp, timing::longestWakeUp, description_.wakeUpSeconds, 1}));
    }
    return {};
}

std::vector<Bytes> SimulatedNode::takeAssociation(Bytes const& command) {
    if (api::decodeCommand<commands::AssociationGroupingsGet>(command)) {
        return one(commands::AssociationGroupingsReport({1}));
    }
    if (api::decodeCommand<commands::AssociationGet>(command)) { // there is one group, which answers for all
        return one(commands::AssociationReport({1, mostLifelineNodes, 0, lifeline_}));
    }
    if (auto const set = api::decodeCommand<commands::AssociationSet>(command); set && set->group == 1) {
        for (auto const node : set->nodes) {
            bool const isNew = std::find(lifeline_.begin(), lifeline_.end(), node) == lifeline_.end();
            if (isNew && lifeline_.size() < mostLifelineNodes) { lifeline_.push_back(node); }
        }
    }
    if (auto const remove = api::decodeCommand<commands::AssociationRemove>(command)) {
        if (remove->nodes.empty()) { lifeline_.clear(); }
        for (auto const node : remove->nodes) {
            lifeline_.erase(std::remove(lifeline_.begin(), lifeline_.end(), node), lifeline_.end());
        }
    }
    return {};
}

std::vector<Bytes> SimulatedNode::takeVersion(Bytes const& command) const {
    if (api::decodeCommand<commands::VersionGet>(command)) {
        commands::Versions versions{0x03, 4, 5, description_.applicationVersion, description_.applicationSubVersion,
                                    {}};
        if (versionOf(commandClass::version) >= 2) { versions.hardware = 1; }
        return one(commands::VersionReport(versions));
    }
    if (auto const get = api::decodeCommand<commands::VersionCommandClassGet>(command)) {
        return one(commands::VersionCommandClassReport({get->value, versionOf(get->value)}));
    }
    return {};
}

} // namespace zorv::modulesim
