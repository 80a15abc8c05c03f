#include "platform/libzorvshared/TransmitOption.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::TransmitOption {

namespace {
constexpr auto table = flagTable<Enum>(
    "TransmitOption", "none",
    {{ack, "ack"}, {lowPower, "lowPower"}, {autoRoute, "autoRoute"}, {noRoute, "noRoute"}, {explore, "explore"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::TransmitOption
