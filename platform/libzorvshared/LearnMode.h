// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Whether and how a controller lets another one include or exclude it.
namespace LearnMode {

enum Enum : int {
    disabled,
    classic, ///< in direct range only
    networkWideInclusion,
    networkWideExclusion
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace LearnMode

} // namespace zorv
