// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/readNetwork.h"

namespace zorv::modulesim {

SimulatedNetwork builtInNetwork() {
    SimulatedNetwork network;
    network.homeId = 0xC0FFEE01;
    network.seed = 7;
    auto const add = [&network](NodeId id, int latency, int jitter) -> NodeDescription& {
        NodeDescription node;
        node.id = id;
        node.latency = Milliseconds(latency);
        node.jitter = Milliseconds(jitter);
        return network.nodes.emplace_back(std::move(node));
    };
    add(2, 18, 4);
    add(3, 22, 6);
    add(5, 31, 9);
    add(6, 124, 40); // behind a repeater
    add(7, 85, 60).loss = 0.3;
    auto& sensor = add(8, 20, 0);
    sensor.kind = NodeKind::sleeping;
    sensor.generic = 0x20;
    sensor.commandClasses = {0x72, 0x80, 0x84, 0x85, 0x86};
    add(9, 20, 0).dead = true;
    network.joining.push_back({NodeDescription(), Milliseconds(1500)});
    network.leaving.push_back({3, Milliseconds(1500)});
    return network;
}

} // namespace zorv::modulesim
