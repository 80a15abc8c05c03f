// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Whether a node that sleeps can be reached now.
namespace WakeStatus {

enum Enum : int { unknown, awake, asleep };

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace WakeStatus

} // namespace zorv
