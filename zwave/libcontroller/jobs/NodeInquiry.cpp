// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/NodeInquiry.h"

#include "platform/libzorvshared/nodeIds.h"

namespace zorv::controller {

void NodeInquiry::run() {
    if (!isNodeId(node_)) { return fail("node " + std::to_string(node_) + " has no place in the node table"); }
    serialapi::CallHandlers<serialapi::GetNodeProtocolInfo> handlers;
    handlers.response = [this](auto const& response) {
        if (response.generic == 0) { return fail("the module knows no node " + std::to_string(node_)); }
        Device device(network().address(node_), deviceInfo(response));
        device.securityStatus(SecurityStatus::insecure);
        device.deviceNetworkStatus(DeviceNetworkStatus::online);
        if (device.isSleeping()) { device.wakeStatus(WakeStatus::asleep); }
        if (information_) { takeCommandClasses(device, information_->commandClasses); }
        network().nodes.add(device);
        done();
    };
    handlers.end = orFail();
    call<serialapi::GetNodeProtocolInfo>({node_}, std::move(handlers));
}

} // namespace zorv::controller
