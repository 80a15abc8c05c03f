// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// What a controller reports of itself over the serial interface, a set of flags.
namespace ControllerCapabilities {

enum Enum : int {
    secondary = 0x01,      ///< is not the primary controller
    onOtherNetwork = 0x02, ///< uses a home id that is not its own
    sisPresent = 0x04,     ///< the network has an SIS
    wasRealPrimary = 0x08, ///< was the primary controller before the SIS came
    suc = 0x10,            ///< is the static update controller
    noNodesIncluded = 0x20 ///< is alone in its network
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace ControllerCapabilities

} // namespace zorv
