// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// How a node uses a command class, a set of flags.
namespace CommandClassAttribs {

enum Enum : int {
    supported = 0x01,  ///< answers its commands
    controlled = 0x02, ///< sends its commands to others
    secure = 0x04      ///< only in encrypted frames
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace CommandClassAttribs

} // namespace zorv
