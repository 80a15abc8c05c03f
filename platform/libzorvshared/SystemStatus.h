// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// State of the Z-Wave system as a whole.
namespace SystemStatus {

enum Enum : int {
    unknown,
    starting, ///< the module is being asked who it is
    ready,
    degraded, ///< the daemon runs, but its module does not answer
    updating,
    stopping ///< the daemon ends on request
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace SystemStatus

} // namespace zorv
