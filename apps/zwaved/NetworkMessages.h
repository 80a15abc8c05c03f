// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/Context.h"

#include "zwave/libquillet/AddRemoveNodeMsg.h"
#include "zwave/libquillet/LearnModeMsg.h"
#include "zwave/libquillet/ManageFailedNodeMsg.h"
#include "zwave/libquillet/RequestNeighborUpdateMsg.h"
#include "zwave/libquillet/RequestNetworkUpdateMsg.h"
#include "zwave/libquillet/ResetDefaultsMsg.h"
#include "zwave/libquillet/SendNifMsg.h"

namespace zorv::daemon {

/// The messages that change the network: which nodes it has, and which the module is in.
class NetworkMessages {
public:
    explicit NetworkMessages(Context const& context);

private:
    template <class M> using Request = boost::shared_ptr<M>;

    void addRemove(Request<AddRemoveNodeMsg> const& request, PeerId from);
    void include(Request<AddRemoveNodeMsg> const& request, PeerId from);
    void exclude(Request<AddRemoveNodeMsg> const& request, PeerId from);
    void abort(Request<AddRemoveNodeMsg> const& request, PeerId from);
    void learn(Request<LearnModeMsg> const& request, PeerId from);
    void reset(Request<ResetDefaultsMsg> const& request, PeerId from);
    void sendNif(Request<SendNifMsg> const& request, PeerId from);
    void manageFailed(Request<ManageFailedNodeMsg> const& request, PeerId from);
    void beginFailed(Request<ManageFailedNodeMsg> const& request, PeerId from);
    void updateNeighbors(Request<RequestNeighborUpdateMsg> const& request, PeerId from);
    void updateNetwork(Request<RequestNetworkUpdateMsg> const& request, PeerId from);

    Context context_;
};

} // namespace zorv::daemon
