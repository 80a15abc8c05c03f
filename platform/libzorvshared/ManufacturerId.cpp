#include "platform/libzorvshared/ManufacturerId.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::ManufacturerId {

namespace {
constexpr auto table = openEnumTable<Enum>("ManufacturerId", 4, {{unknown, "unknown"}, {zorv, "zorv"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::ManufacturerId
