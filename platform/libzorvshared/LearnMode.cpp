#include "platform/libzorvshared/LearnMode.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::LearnMode {

namespace {
constexpr auto table = enumTable<Enum>("LearnMode", {{disabled, "disabled"},
                                                     {classic, "classic"},
                                                     {networkWideInclusion, "networkWideInclusion"},
                                                     {networkWideExclusion, "networkWideExclusion"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::LearnMode
