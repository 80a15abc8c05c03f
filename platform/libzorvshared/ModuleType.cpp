#include "platform/libzorvshared/ModuleType.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::ModuleType {

namespace {
constexpr auto table = enumTable<Enum>("ModuleType", {{none, "none"},
                                                      {staticController, "staticController"},
                                                      {portableController, "portableController"},
                                                      {enhancedSlave, "enhancedSlave"},
                                                      {slave, "slave"},
                                                      {installer, "installer"},
                                                      {routingSlave, "routingSlave"},
                                                      {bridgeController, "bridgeController"},
                                                      {deviceUnderTest, "deviceUnderTest"},
                                                      {avRemote, "avRemote"},
                                                      {avDevice, "avDevice"},
                                                      {unknown, "unknown"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::ModuleType
