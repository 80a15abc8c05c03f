// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/SystemStatus.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::SystemStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::SystemStatus
