#include "platform/libzorvshared/BasicDeviceType.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::BasicDeviceType {

namespace {
constexpr auto table = openEnumTable<Enum>("BasicDeviceType", 2,
                                           {{unknown, "unknown"},
                                            {controller, "controller"},
                                            {staticController, "staticController"},
                                            {slave, "slave"},
                                            {routingSlave, "routingSlave"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::BasicDeviceType
