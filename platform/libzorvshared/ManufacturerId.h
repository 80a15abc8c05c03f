// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Who made a device.
///
/// The set is open: every value but our own is written as its four hex digits.
namespace ManufacturerId {

enum Enum : int { unknown = 0x0000, zorv = 0x023F };

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace ManufacturerId

} // namespace zorv
