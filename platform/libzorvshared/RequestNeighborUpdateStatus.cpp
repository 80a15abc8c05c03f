// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/RequestNeighborUpdateStatus.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::RequestNeighborUpdateStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::RequestNeighborUpdateStatus
