// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/NodeInformationFrame.h"

#include "platform/libzorvshared/nodeIds.h"

namespace zorv::controller {

using serialapi::SendNodeInformation;

std::string NodeInformationFrame::objection(Network const& network) const {
    if (node_ != broadcastNodeId && network.nodes.find(node_) == nullptr) {
        return "the network has no node " + std::to_string(node_);
    }
    return network.module.knows<SendNodeInformation>() ? "" : "the module does not know how";
}

void NodeInformationFrame::run() {
    serialapi::CallHandlers<SendNodeInformation> handlers;
    handlers.callback = [this](serialapi::TransmitCallback const& callback) {
        if (callback.status == 0) { return done(); }
        fail("not sent");
    };
    handlers.end = orFail();
    call<SendNodeInformation>({node_, options_, 0}, std::move(handlers), serialapi::limits::callbackTime);
}

} // namespace zorv::controller
