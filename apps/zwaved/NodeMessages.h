// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/Context.h"

#include "zwave/libcontroller/jobs/Transmission.h"
#include "zwave/libquillet/ConfigurationMsg.h"
#include "zwave/libquillet/DeviceStatusMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/SendCommandMsg.h"

namespace zorv::daemon {

/// The messages to nodes, and those that tell what is known of them.
class NodeMessages {
public:
    explicit NodeMessages(Context const& context);

private:
    template <class M> using Request = boost::shared_ptr<M>;

    void ping(Request<PingMsg> const& request, PeerId from);
    void sendCommand(Request<SendCommandMsg> const& request, PeerId from);
    controller::Transmission::Order orderFor(SendCommandMsg const& request) const;
    bool isGivenUp(SendCommandMsg const& request) const;
    void configure(Request<ConfigurationMsg> const& request, PeerId from);
    void nodeInformation(Request<NodeInformationMsg> const& request, PeerId from);
    void tellNodes(Request<NodeInformationMsg> const& request, PeerId from);
    void setNodes(Request<NodeInformationMsg> const& request, PeerId from);
    void deviceStatus(Request<DeviceStatusMsg> const& request, PeerId from);

    Context context_;
};

} // namespace zorv::daemon
