// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/Priority.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::Priority {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::Priority
