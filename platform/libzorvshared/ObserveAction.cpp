// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/ObserveAction.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::ObserveAction {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::ObserveAction
