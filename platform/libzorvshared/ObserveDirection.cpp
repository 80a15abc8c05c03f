// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/ObserveDirection.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::ObserveDirection {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::ObserveDirection
