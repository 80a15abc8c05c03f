// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/DeviceNetworkStatus.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::DeviceNetworkStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::DeviceNetworkStatus
