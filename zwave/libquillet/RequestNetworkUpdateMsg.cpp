// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/RequestNetworkUpdateMsg.h"

#include "transport/displayRow.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const RequestNetworkUpdateMsg::NAME("RequestNetworkUpdateMsg");
SerialRegistrar const RequestNetworkUpdateMsg::registrar("zorv::" + NAME, &RequestNetworkUpdateMsg::serialFactory);

struct RequestNetworkUpdateMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&RequestNetworkUpdateMsg::status_>("how the update went"),
                        member<&RequestNetworkUpdateMsg::timeout_>("time-out of the update"));
};

template class MessageOf<RequestNetworkUpdateMsg, Confirmable>;

boost::shared_ptr<RequestNetworkUpdateMsg> RequestNetworkUpdateMsg::create() {
    return create(ZResult::success, RequestNetworkUpdateStatus::wait, 0); // 0, although DEFAULT_TIMEOUT is 180
}

boost::shared_ptr<RequestNetworkUpdateMsg>
RequestNetworkUpdateMsg::create(ZResult::Enum result, RequestNetworkUpdateStatus::Enum status, unsigned int timeout) {
    return boost::make_shared<RequestNetworkUpdateMsg>(result, status, timeout);
}

boost::shared_ptr<RequestNetworkUpdateMsg>
RequestNetworkUpdateMsg::create(boost::shared_ptr<RequestNetworkUpdateMsg> const& request, ZResult::Enum result,
                                RequestNetworkUpdateStatus::Enum status, unsigned int timeout) {
    return respondWithNew<RequestNetworkUpdateMsg>(requireMessage(request), result, status, timeout);
}

void RequestNetworkUpdateMsg::accumulateDisplay(StringVecVec& rows) const {
    displayRow(rows, "Request status:", status_);
    displayRow(rows, "Timeout:", timeout_);
}

} // namespace zorv
