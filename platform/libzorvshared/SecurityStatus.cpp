// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/SecurityStatus.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::SecurityStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::SecurityStatus
