// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/RequestNetworkUpdateStatus.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::RequestNetworkUpdateStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::RequestNetworkUpdateStatus
