// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Which end of a connection an event concerns.
namespace SocketActor {

enum Enum : int { none, client, server };

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace SocketActor

} // namespace zorv
