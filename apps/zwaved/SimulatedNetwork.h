// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/ZResult.h"
#include "platform/libzorvshared/ZwaveAddress.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <random>
#include <vector>

namespace zorv {

enum class NodeState {
    awake,
    sleeping, ///< cannot be reached before it wakes up
    dead      ///< never acknowledges
};

struct NodeDescription {
    unsigned char id = 0; ///< 1 to 232
    NodeState state = NodeState::awake;
    unsigned int latencyMs = 20; ///< round trip, milliseconds
    unsigned int jitterMs = 0;   ///< most by which the round trip deviates, either way, milliseconds
    double loss = 0;             ///< share of frames that are not acknowledged, 0 to 1
};

struct NetworkDescription {
    HomeId homeId = 0;
    unsigned char controller = 1;    ///< node id of the controller itself
    std::uint32_t seed = 1;          ///< of everything random in the network
    unsigned int retransmitMs = 300; ///< how long the controller tries to reach a node that does not acknowledge
    std::vector<NodeDescription> nodes;
};

/// A simulated Z-Wave network. The same description gives the same outcomes: those of one node depend only on the seed
/// and on how often this node was asked before.
class SimulatedNetwork {
public:
    struct Outcome {
        ZResult::Enum result;
        std::chrono::milliseconds delay; ///< until the outcome is known
    };

    explicit SimulatedNetwork(NetworkDescription const& description);

    /// Sends a frame to a node and waits for its acknowledgement. Home id 0 stands for this network.
    Outcome reach(ZwaveAddress const& destination);

private:
    struct Node {
        NodeDescription description;
        std::mt19937 random;
    };

    Outcome reachAwake(Node& node) const;

    NetworkDescription description_;
    std::map<unsigned char, Node> nodes_;
};

} // namespace zorv
