// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/NeighborUpdate.h"

namespace zorv::controller {

using serialapi::RequestNodeNeighborUpdate;

std::string NeighborUpdate::objection(Network const& network) const {
    if (network.nodes.find(node_) == nullptr) { return "the network has no node " + std::to_string(node_); }
    if (!network.module.knows<RequestNodeNeighborUpdate>()) { return "the module does not know how"; }
    return "";
}

void NeighborUpdate::run() {
    serialapi::CallHandlers<RequestNodeNeighborUpdate> handlers;
    handlers.callback = [this](serialapi::StatusCallback const& callback) {
        if (callback.status == RequestNodeNeighborUpdate::started) {
            if (started_) { std::exchange(started_, {})(); } // some modules say it twice
        } else if (callback.status == RequestNodeNeighborUpdate::done) {
            done();
        } else {
            fail("the node has not found out");
        }
    };
    handlers.end = orFail();
    call<RequestNodeNeighborUpdate>({node_, 0}, std::move(handlers));
}

} // namespace zorv::controller
