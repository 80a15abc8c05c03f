#include "platform/libzorvshared/DeviceLights.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::DeviceLights {

namespace {
constexpr auto table = enumTable<Enum>(
    "DeviceLights",
    {{off, "off"}, {on, "on"}, {blinking, "blinking"}, {blinkingFast, "blinkingFast"}, {unknown, "unknown"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::DeviceLights
