// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Whether a node can be reached.
namespace DeviceNetworkStatus {

enum Enum : int {
    unknown,
    online,  ///< answered the last command
    offline, ///< did not answer the last command
    failed   ///< is on the controller's list of failed nodes
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace DeviceNetworkStatus

} // namespace zorv
