// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// What the controller reports while a node looks for its neighbours.
namespace RequestNeighborUpdateStatus {

enum Enum : int { none = 0, started = 0x21, done = 0x22, failed = 0x23 };

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace RequestNeighborUpdateStatus

} // namespace zorv
