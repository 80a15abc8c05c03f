// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SocketStatusMsg.h"

#include "platform/libtransport/tables/EnumTable.h"
#include "zwave/libquillet/support/MessageOfImpl.h"

namespace zorv {

std::string const SocketStatusMsg::NAME("SocketStatusMsg");
SerialRegistrar const SocketStatusMsg::registrar("zorv::" + NAME, &SocketStatusMsg::serialFactory);

namespace SocketEvent {

ZORV_ENUM_DEFINE(enumTable<Enum>())
ZORV_ENUM_DEFINE_HEX

} // namespace SocketEvent

struct SocketStatusMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&SocketStatusMsg::status_>("what happened on the connection"),
                        member<&SocketStatusMsg::actor_>("which end it concerns"));
};

template class MessageOf<SocketStatusMsg, TMessage>;

boost::shared_ptr<SocketStatusMsg> SocketStatusMsg::create(Endpoint const& source, SocketEvent::Enum status,
                                                           SocketActor::Enum actor) {
    auto message = boost::make_shared<SocketStatusMsg>(status, actor);
    message->source(source);
    return message;
}

} // namespace zorv
