#include "platform/libzorvshared/WakeStatus.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::WakeStatus {

namespace {
constexpr auto table = enumTable<Enum>("WakeStatus", {{unknown, "unknown"}, {awake, "awake"}, {asleep, "asleep"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::WakeStatus
