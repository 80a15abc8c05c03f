// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/ModuleType.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::ModuleType {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::ModuleType
