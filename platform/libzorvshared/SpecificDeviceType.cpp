#include "platform/libzorvshared/SpecificDeviceType.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::SpecificDeviceType {

namespace {
constexpr auto table = openEnumTable<Enum>("SpecificDeviceType", 2, {{notUsed, "notUsed"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::SpecificDeviceType
