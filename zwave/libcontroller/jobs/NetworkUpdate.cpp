// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/NetworkUpdate.h"

namespace zorv::controller {

using serialapi::RequestNetworkUpdate;

std::string NetworkUpdate::objection(Network const& network) const {
    return network.module.knows<RequestNetworkUpdate>() ? "" : "the module does not know how";
}

void NetworkUpdate::run() {
    serialapi::CallHandlers<RequestNetworkUpdate> handlers;
    handlers.callback = [this](serialapi::StatusCallback const& callback) {
        status_ = callback.status;
        if (callback.status == 0) { return done(); }
        fail("the update controller has answered " + std::to_string(callback.status));
    };
    handlers.end = orFail();
    call<RequestNetworkUpdate>({0}, std::move(handlers));
}

} // namespace zorv::controller
