#include "platform/libzorvshared/SystemStatus.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::SystemStatus {

namespace {
constexpr auto table = enumTable<Enum>("SystemStatus", {{unknown, "unknown"},
                                                        {starting, "starting"},
                                                        {ready, "ready"},
                                                        {degraded, "degraded"},
                                                        {updating, "updating"},
                                                        {stopping, "stopping"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::SystemStatus
