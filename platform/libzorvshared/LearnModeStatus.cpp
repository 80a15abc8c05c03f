#include "platform/libzorvshared/LearnModeStatus.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::LearnModeStatus {

namespace {
constexpr auto table =
    enumTable<Enum>("LearnModeStatus",
                    {{none, "none"}, {started, "started"}, {done, "done"}, {failed, "failed"}, {deleted, "deleted"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::LearnModeStatus
