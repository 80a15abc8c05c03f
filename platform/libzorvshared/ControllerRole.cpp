#include "platform/libzorvshared/ControllerRole.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::ControllerRole {

namespace {
constexpr auto table = enumTable<Enum>("ControllerRole", {{unknown, "unknown"},
                                                          {primary, "primary"},
                                                          {secondary, "secondary"},
                                                          {inclusion, "inclusion"},
                                                          {suc, "suc"},
                                                          {sis, "sis"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::ControllerRole
