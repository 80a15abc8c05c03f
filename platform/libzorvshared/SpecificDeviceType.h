// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Specific device type that a node reports.
///
/// What a value means depends on the generic type, but for 0, so the others are their two hex digits.
namespace SpecificDeviceType {

enum Enum : int { notUsed };

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace SpecificDeviceType

} // namespace zorv
