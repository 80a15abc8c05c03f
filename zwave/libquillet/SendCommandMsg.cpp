// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SendCommandMsg.h"

#include "platform/libzorvshared/nodeIds.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const SendCommandMsg::NAME("SendCommandMsg");
SerialRegistrar const SendCommandMsg::registrar("zorv::" + NAME, &SendCommandMsg::serialFactory);

struct SendCommandMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&SendCommandMsg::destinations_>("nodes to send to"),
                        member<&SendCommandMsg::command_>("command to send"),
                        member<&SendCommandMsg::options_>("transmit options of the controller"),
                        member<&SendCommandMsg::noWait_>("do not wait for the node's confirmation"),
                        member<&SendCommandMsg::forceSend_>("send even what would be held back or refused"),
                        member<&SendCommandMsg::forceSecure_>("send encrypted"),
                        member<&SendCommandMsg::groupResponse_>("whether this answers a broadcast or a multicast"));
};

template class MessageOf<SendCommandMsg, Confirmable>;

namespace {

constexpr std::size_t maxDestinations = 64;

} // namespace

boost::shared_ptr<SendCommandMsg> SendCommandMsg::create(ZwaveAddress const& destination,
                                                         boost::shared_ptr<GenericCommand> const& command,
                                                         TransmitOption::Enum options, bool noWait, bool forceSend,
                                                         bool forceSecure) {
    return boost::make_shared<SendCommandMsg>(destination, command, options, noWait, forceSend, forceSecure);
}

boost::shared_ptr<SendCommandMsg> SendCommandMsg::create(std::vector<ZwaveAddress> const& destinations,
                                                         boost::shared_ptr<GenericCommand> const& command,
                                                         TransmitOption::Enum options, bool noWait, bool forceSend,
                                                         bool forceSecure) {
    return boost::make_shared<SendCommandMsg>(destinations, command, options, noWait, forceSend, forceSecure);
}

boost::shared_ptr<SendCommandMsg> SendCommandMsg::create(boost::shared_ptr<SendCommandMsg> const& request,
                                                         ZResult::Enum result) {
    auto response = respondWithCopy(request, result);
    if (response && (response->sendMulticast() || response->sendBroadcast())) { response->groupResponse_ = true; }
    return response;
}

ZwaveAddress const& SendCommandMsg::destination(unsigned int index) const noexcept {
    return index < destinations_.size() ? destinations_[index] : ZwaveAddress::INVALID_ADDRESS;
}

bool SendCommandMsg::validDestinations(std::vector<ZwaveAddress> const& destinations) {
    if (destinations.size() > maxDestinations) { return false; }
    bool first = true;
    for (auto const& destination : destinations) {
        auto const nodeId = destination.nodeId();
        if (!isNodeId(nodeId) && !(first && nodeId == broadcastNodeId)) { return false; }
        first = false;
    }
    return true;
}

bool SendCommandMsg::sendSinglecast() const {
    return destinations_.size() == 1 && validDestinations(destinations_) &&
           destinations_[0].nodeId() != broadcastNodeId;
}

bool SendCommandMsg::sendBroadcast() const {
    return destinations_.size() == 1 && validDestinations(destinations_) &&
           destinations_[0].nodeId() == broadcastNodeId;
}

bool SendCommandMsg::sendMulticast() const { return destinations_.size() >= 2 && validDestinations(destinations_); }

} // namespace zorv
