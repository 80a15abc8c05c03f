// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// How far the daemon is with a device, be it a node or its own module.
namespace DeviceStatus {

enum Enum : int {
    unknown,
    configuring, ///< the interview is running
    ready,
    incomplete, ///< the interview ended with errors
    fault       ///< answers, but not as it should
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace DeviceStatus

} // namespace zorv
