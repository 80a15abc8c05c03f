// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libmodulesim/FamiliesImpl.h"
#include "zwave/libmodulesim/TimingImpl.h"

// Who keeps the network's changes.

namespace zorv::modulesim {

namespace api = serialapi;

namespace {

constexpr Byte succeeded = 5;
constexpr Byte failed = 6;
constexpr Byte updated = 0;
constexpr Byte notReached = 1;
constexpr Byte sis = 0x01;

/// Whether the module can make that node the update controller, or take the role from it.
bool setUpdateController(Core& core, api::SetSucNodeId::Request const& request) {
    auto& membership = core.membership;
    if (membership.isSecondary || membership.nodes.count(request.node) == 0) { return false; }
    membership.updateController = request.enable != 0 ? request.node : NodeId{0};
    membership.isSis = request.enable != 0 && (request.capabilities & sis) != 0;
    core.membershipChanged();
    return true;
}

} // namespace

void serveRoles(Core& core) {
    core.serve<api::GetSucNodeId>([&core](auto const&) { return api::OneNode{core.membership.updateController}; });
    core.serve<api::SetSucNodeId>([&core](api::SetSucNodeId::Request const& request) {
        bool const isDone = setUpdateController(core, request);
        // Of its own id, the 500 series tells no more than that it has taken it.
        bool const isSilent = core.isSeries500() && request.node == core.membership.node;
        if (isDone && !isSilent) {
            core.after(timing::assignsRoute, [&core, request] {
                bool const isThere = request.node == core.membership.node || core.node(request.node) != nullptr;
                core.callBack<api::SetSucNodeId>({request.callbackId, isThere ? succeeded : failed});
            });
        }
        return api::Accepted{isDone ? Byte{1} : Byte{0}};
    });
    core.serve<api::SendSucId>([&core](api::SendSucId::Request const& request) {
        core.after(timing::assignsRoute, [&core, request] {
            auto* const node = core.node(request.node);
            bool const isThere = node != nullptr && node->hears(core.time());
            core.callBack<api::SendSucId>({request.callbackId, isThere ? updated : notReached});
        });
        return api::Accepted{1};
    });
    core.serve<api::RequestNetworkUpdate>([&core](api::JobCallback const& request) {
        auto const updater = core.membership.updateController;
        if (updater == 0 || updater == core.membership.node) { return api::Accepted{0}; }
        core.after(timing::updatesNetwork, [&core, request] {
            core.callBack<api::RequestNetworkUpdate>({request.callbackId, updated});
        });
        return api::Accepted{1};
    });
}

} // namespace zorv::modulesim
