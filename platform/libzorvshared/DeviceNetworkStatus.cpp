#include "platform/libzorvshared/DeviceNetworkStatus.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::DeviceNetworkStatus {

namespace {
constexpr auto table = enumTable<Enum>(
    "DeviceNetworkStatus", {{unknown, "unknown"}, {online, "online"}, {offline, "offline"}, {failed, "failed"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::DeviceNetworkStatus
