// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Part that a controller plays in its network.
namespace ControllerRole {

enum Enum : int {
    unknown,
    primary,   ///< includes and excludes nodes
    secondary, ///< knows the network, but cannot change it
    inclusion, ///< includes nodes on behalf of the SIS
    suc,       ///< static update controller: keeps the network's topology for others
    sis        ///< static update controller that also hands out node ids
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace ControllerRole

} // namespace zorv
