// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/SimulatedNetwork.h"

namespace zorv {

using std::chrono::milliseconds;

SimulatedNetwork::SimulatedNetwork(NetworkDescription const& description) : description_(description) {
    for (auto const& node : description_.nodes) {
        std::seed_seq seed{description_.seed, static_cast<std::uint32_t>(node.id)};
        nodes_.emplace(node.id, Node{node, std::mt19937(seed)});
    }
}

SimulatedNetwork::Outcome SimulatedNetwork::reach(ZwaveAddress const& destination) {
    bool const here = destination.homeId() == 0 || destination.homeId() == description_.homeId;
    if (here && destination.nodeId() == description_.controller) { return {ZResult::success, milliseconds(0)}; }
    auto const found = nodes_.find(destination.nodeId());
    if (!here || found == nodes_.end()) { return {ZResult::nodeNotFound, milliseconds(0)}; }
    switch (found->second.description.state) {
    case NodeState::awake: return reachAwake(found->second);
    case NodeState::sleeping: return {ZResult::nodeAsleep, milliseconds(0)};
    case NodeState::dead: break;
    }
    return {ZResult::nodeNotReached, milliseconds(description_.retransmitMs)};
}

SimulatedNetwork::Outcome SimulatedNetwork::reachAwake(Node& node) const {
    auto const& description = node.description;
    // The library's distributions differ between implementations; the generator's numbers do not.
    auto const lost = static_cast<double>(node.random()) < description.loss * 4294967296.0;
    auto const jitter = static_cast<unsigned int>(node.random()) % (2 * description.jitterMs + 1);
    if (lost) { return {ZResult::nodeNotReached, milliseconds(description_.retransmitMs)}; }
    return {ZResult::success, milliseconds(description.latencyMs + jitter - description.jitterMs)};
}

} // namespace zorv
