// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv::Priority {

/// Order in which waiting messages are handled; the highest goes first.
enum Enum : int { low, normal, high };

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace zorv::Priority
