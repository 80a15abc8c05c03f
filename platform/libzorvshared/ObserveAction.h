// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// What is asked of the observation of message traffic.
namespace ObserveAction {

enum Enum : int {
    none, ///< asks nothing: an observed message, or an answer
    start,
    stop
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace ObserveAction

} // namespace zorv
