#include "platform/libzorvshared/SocketActor.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::SocketActor {

namespace {
constexpr auto table = enumTable<Enum>("SocketActor", {{none, "none"}, {client, "client"}, {server, "server"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::SocketActor
