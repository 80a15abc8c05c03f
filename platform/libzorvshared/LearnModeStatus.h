// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// What the controller reports while it is in learn mode.
namespace LearnModeStatus {

enum Enum : int {
    none = 0,
    started = 1,
    done = 6,
    failed = 7,
    deleted = 0x80 ///< the controller was excluded
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace LearnModeStatus

} // namespace zorv
