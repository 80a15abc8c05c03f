// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/NodeInformationRequest.h"

namespace zorv::controller {

using serialapi::ApplicationUpdate;
using serialapi::RequestNodeInfo;

std::string NodeInformationRequest::objection(Network const& network) const {
    return network.nodes.find(node_) == nullptr ? "the network has no node " + std::to_string(node_) : "";
}

void NodeInformationRequest::run() {
    serialapi::CallHandlers<RequestNodeInfo> handlers;
    handlers.response = [this](serialapi::Accepted const& response) {
        if (response.accepted == 0) { return fail(complaint(serialapi::CallEnd::refused)); }
        step(limits::answerTime);
    };
    handlers.end = orFail();
    call<RequestNodeInfo>({node_}, std::move(handlers));
}

/// A failure names no node; it is about the request that is open.
void NodeInformationRequest::updated(ApplicationUpdate::Callback const& update) {
    if (state() != JobState::running) { return; }
    if (update.state == ApplicationUpdate::nodeInformation && update.node == node_) { return done(); }
    if (update.state == ApplicationUpdate::requestFailed) { fail("the node does not answer"); }
}

} // namespace zorv::controller
