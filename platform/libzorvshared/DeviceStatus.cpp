// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/DeviceStatus.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::DeviceStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::DeviceStatus
