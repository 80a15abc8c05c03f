// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/WakeStatus.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::WakeStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::WakeStatus
