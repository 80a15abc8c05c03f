#include "platform/libzorvshared/DeviceStatus.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::DeviceStatus {

namespace {
constexpr auto table = enumTable<Enum>("DeviceStatus", {{unknown, "unknown"},
                                                        {configuring, "configuring"},
                                                        {ready, "ready"},
                                                        {incomplete, "incomplete"},
                                                        {fault, "fault"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::DeviceStatus
