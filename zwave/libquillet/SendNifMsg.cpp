// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SendNifMsg.h"

#include "platform/libzorvshared/nodeIds.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const SendNifMsg::NAME("SendNifMsg");
SerialRegistrar const SendNifMsg::registrar("zorv::" + NAME, &SendNifMsg::serialFactory);

struct SendNifMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&SendNifMsg::destination_>("node id; 255 stands for all nodes"),
                        member<&SendNifMsg::options_>("how the frame is sent"));
};

template class MessageOf<SendNifMsg, Confirmable>;

boost::shared_ptr<SendNifMsg> SendNifMsg::create(unsigned char destination, TransmitOption::Enum options) {
    return boost::make_shared<SendNifMsg>(destination, options);
}

// Most response forms check the request and repeat its members; this one does neither.
boost::shared_ptr<SendNifMsg> SendNifMsg::create(boost::shared_ptr<SendNifMsg> const& request, ZResult::Enum result) {
    auto response = respondWithNew<SendNifMsg>(*request, broadcastNodeId, TransmitOption::defaultOptions);
    response->result(result);
    return response;
}

} // namespace zorv
