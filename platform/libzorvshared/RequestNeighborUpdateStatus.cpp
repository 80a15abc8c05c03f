#include "platform/libzorvshared/RequestNeighborUpdateStatus.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::RequestNeighborUpdateStatus {

namespace {
constexpr auto table = enumTable<Enum>("RequestNeighborUpdateStatus",
                                       {{none, "none"}, {started, "started"}, {done, "done"}, {failed, "failed"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::RequestNeighborUpdateStatus
