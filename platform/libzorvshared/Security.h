// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Second byte of what a node reports of itself, a set of flags; besides security it tells how a sleeping node is woken.
namespace Security {

enum Enum : int {
    security = 0x01,             ///< supports encrypted frames
    controller = 0x02,           ///< is a controller
    specificDeviceType = 0x04,   ///< has a specific device type
    routingSlave = 0x08,         ///< is a slave that routes
    beamCapability = 0x10,       ///< sends wake-up beams for others
    sensor250ms = 0x20,          ///< listens for a beam every 250 ms
    sensor1000ms = 0x40,         ///< listens for a beam every 1000 ms
    optionalFunctionality = 0x80 ///< supports more command classes than its type asks for
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace Security

} // namespace zorv
