// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/RequestNeighborUpdateMsg.h"

#include "transport/displayRow.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const RequestNeighborUpdateMsg::NAME("RequestNeighborUpdateMsg");
SerialRegistrar const RequestNeighborUpdateMsg::registrar("zorv::" + NAME, &RequestNeighborUpdateMsg::serialFactory);

struct RequestNeighborUpdateMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&RequestNeighborUpdateMsg::address_>("node whose neighbours are looked for"),
                        member<&RequestNeighborUpdateMsg::status_>("how far the node has come"),
                        member<&RequestNeighborUpdateMsg::timeout_>("time-out of the update"));
};

template class MessageOf<RequestNeighborUpdateMsg, Confirmable>;

boost::shared_ptr<RequestNeighborUpdateMsg> RequestNeighborUpdateMsg::create(ZwaveAddress const& address) {
    return create(ZResult::success, address, RequestNeighborUpdateStatus::none);
}

boost::shared_ptr<RequestNeighborUpdateMsg> RequestNeighborUpdateMsg::create(ZResult::Enum result,
                                                                             ZwaveAddress const& address,
                                                                             RequestNeighborUpdateStatus::Enum status) {
    return boost::make_shared<RequestNeighborUpdateMsg>(result, address, status, DEFAULT_TIMEOUT);
}

boost::shared_ptr<RequestNeighborUpdateMsg>
RequestNeighborUpdateMsg::create(boost::shared_ptr<RequestNeighborUpdateMsg> const& request, ZResult::Enum result,
                                 ZwaveAddress const& address, RequestNeighborUpdateStatus::Enum status,
                                 unsigned int timeout) {
    return respondWithNew<RequestNeighborUpdateMsg>(requireMessage(request), result, address, status, timeout);
}

void RequestNeighborUpdateMsg::accumulateDisplay(StringVecVec& rows) const {
    displayRow(rows, "Node id:", address_.nodeId());
    displayRow(rows, "Request status:", status_);
}

} // namespace zorv
