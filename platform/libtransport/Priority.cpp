#include "platform/libtransport/Priority.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::Priority {

namespace {
constexpr auto table = enumTable<Enum>("Priority", {{low, "low"}, {normal, "normal"}, {high, "high"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::Priority
