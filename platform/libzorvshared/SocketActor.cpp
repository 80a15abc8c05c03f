// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/SocketActor.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::SocketActor {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::SocketActor
