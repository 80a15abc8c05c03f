#include "platform/libzorvshared/SecurityStatus.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::SecurityStatus {

namespace {
constexpr auto table = enumTable<Enum>("SecurityStatus", {{unknown, "unknown"},
                                                          {insecure, "insecure"},
                                                          {bootstrapping, "bootstrapping"},
                                                          {s0, "s0"},
                                                          {s2Unauthenticated, "s2Unauthenticated"},
                                                          {s2Authenticated, "s2Authenticated"},
                                                          {s2AccessControl, "s2AccessControl"},
                                                          {failed, "failed"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::SecurityStatus
