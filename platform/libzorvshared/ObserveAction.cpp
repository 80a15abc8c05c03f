#include "platform/libzorvshared/ObserveAction.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::ObserveAction {

namespace {
constexpr auto table = enumTable<Enum>("ObserveAction", {{none, "none"}, {start, "start"}, {stop, "stop"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::ObserveAction
