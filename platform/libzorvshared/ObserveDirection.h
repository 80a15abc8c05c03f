// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Which way an observed message travelled, as the daemon sees it.
namespace ObserveDirection {

enum Enum : int { none, received, sent };

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace ObserveDirection

} // namespace zorv
