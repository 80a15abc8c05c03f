// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SessionLayerMsg.h"

#include "platform/libtransport/tables/EnumTable.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const SessionLayerMsg::NAME("SessionLayerMsg");
SerialRegistrar const SessionLayerMsg::registrar("zorv::" + NAME, &SessionLayerMsg::serialFactory);

namespace SessionLayerOp {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace SessionLayerOp

namespace SessionLayerStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace SessionLayerStatus

struct SessionLayerMsg::Wire {
    static constexpr auto members = std::make_tuple(member<&SessionLayerMsg::op_>("what is asked for"),
                                                    member<&SessionLayerMsg::status_>("state of the layer"));
};

template class MessageOf<SessionLayerMsg, Confirmable>;

SessionLayerMsg::SessionLayerMsg(SessionLayerStatus::Enum status) : status_(status) { role(MessageRole::report); }

SessionLayerMsg::SessionLayerMsg(SessionLayerOp::Enum op) : op_(op) { role(MessageRole::request); }

boost::shared_ptr<SessionLayerMsg> SessionLayerMsg::create(boost::shared_ptr<SessionLayerMsg> const& request,
                                                           ZResult::Enum result) {
    return respondWithCopy(request, result);
}

boost::shared_ptr<SessionLayerMsg> SessionLayerMsg::create(boost::shared_ptr<SessionLayerMsg> const& request,
                                                           ZResult::Enum result, SessionLayerStatus::Enum status) {
    auto response = create(request, result);
    response->status_ = status;
    return response;
}

} // namespace zorv
