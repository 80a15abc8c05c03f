#include "zwave/libquillet/SocketStatusMsg.h"

#include "platform/libtransport/EnumTable.h"
#include "zwave/libquillet/support/MessageOfImpl.h"

namespace zorv {

std::string const SocketStatusMsg::NAME("SocketStatusMsg");
SerialRegistrar const SocketStatusMsg::registrar("zorv::" + NAME, &SocketStatusMsg::serialFactory);

namespace SocketEvent {

namespace {
constexpr auto table = enumTable<Enum>(
    "SocketEvent", {{invalid, "invalid"}, {connect, "connect"}, {disconnect, "disconnect"}, {error, "error"}});
} // namespace

ZORV_ENUM_DEFINE(table)
ZORV_ENUM_DEFINE_HEX

} // namespace SocketEvent

struct SocketStatusMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member("status_", &SocketStatusMsg::status_, "what happened on the connection"),
                        member("actor_", &SocketStatusMsg::actor_, "which end it concerns"));
};

template class MessageOf<SocketStatusMsg, TMessage>;

boost::shared_ptr<SocketStatusMsg> SocketStatusMsg::create(Endpoint const& source, SocketEvent::Enum status,
                                                           SocketActor::Enum actor) {
    auto message = boost::make_shared<SocketStatusMsg>(status, actor);
    message->source(source);
    return message;
}

} // namespace zorv
