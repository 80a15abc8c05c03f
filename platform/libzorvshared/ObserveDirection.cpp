#include "platform/libzorvshared/ObserveDirection.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::ObserveDirection {

namespace {
constexpr auto table = enumTable<Enum>("ObserveDirection", {{none, "none"}, {received, "received"}, {sent, "sent"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::ObserveDirection
