#include "platform/libzorvshared/ControllerCapabilities.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::ControllerCapabilities {

namespace {
constexpr auto table = flagTable<Enum>("ControllerCapabilities", "none",
                                       {{secondary, "secondary"},
                                        {onOtherNetwork, "onOtherNetwork"},
                                        {sisPresent, "sisPresent"},
                                        {wasRealPrimary, "wasRealPrimary"},
                                        {suc, "suc"},
                                        {noNodesIncluded, "noNodesIncluded"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::ControllerCapabilities
