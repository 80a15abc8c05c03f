#include "platform/libzorvshared/RequestNetworkUpdateStatus.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::RequestNetworkUpdateStatus {

namespace {
constexpr auto table =
    enumTable<Enum>("RequestNetworkUpdateStatus",
                    {{done, "done"}, {abort, "abort"}, {wait, "wait"}, {disabled, "disabled"}, {overflow, "overflow"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::RequestNetworkUpdateStatus
