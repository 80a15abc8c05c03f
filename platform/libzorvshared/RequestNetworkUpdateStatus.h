// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// How the controller's request for topology updates from the SUC ended.
namespace RequestNetworkUpdateStatus {

enum Enum : int {
    done,
    abort,
    wait,     ///< the SUC is busy; or the outcome is still awaited
    disabled, ///< the SUC function is off
    overflow  ///< more changes than the SUC keeps; the controller has to be replicated to
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace RequestNetworkUpdateStatus

} // namespace zorv
