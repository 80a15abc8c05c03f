// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Outcome of what a message asked for.
namespace TResult {

enum Enum : int {
    none,
    success,
    failure,
    inProgress,
    rejected, ///< the daemon did not understand or does not accept the message
    timeout,
    fileNotFound,
    fileOpenFailure,
    fileReadFailure,
    noBlobs,
    nodeNotFound,   ///< the network has no such node
    nodeNotReached, ///< the node did not acknowledge
    nodeAsleep      ///< the node sleeps and cannot be reached before it wakes up
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace TResult

namespace ZResult = TResult;

} // namespace zorv
