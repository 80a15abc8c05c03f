// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// What the lights of a device show.
namespace DeviceLights {

enum Enum : int {
    off,
    on,
    blinking,
    blinkingFast,
    unknown ///< what a device shows as long as nobody has asked it
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace DeviceLights

} // namespace zorv
