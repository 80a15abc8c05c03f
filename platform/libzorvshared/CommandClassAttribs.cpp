#include "platform/libzorvshared/CommandClassAttribs.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::CommandClassAttribs {

namespace {
constexpr auto table = flagTable<Enum>("CommandClassAttribs", "none",
                                       {{supported, "supported"}, {controlled, "controlled"}, {secure, "secure"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::CommandClassAttribs
