// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// The security with which a node was included. For a network: the best that its controller offers.
namespace SecurityStatus {

enum Enum : int {
    unknown,
    insecure,      ///< without encryption
    bootstrapping, ///< keys are being exchanged
    s0,
    s2Unauthenticated,
    s2Authenticated,
    s2AccessControl,
    failed ///< the exchange of keys failed; the node is in the network without encryption
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace SecurityStatus

} // namespace zorv
