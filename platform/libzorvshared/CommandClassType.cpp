// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/CommandClassType.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::CommandClassType {

ZORV_ENUM_DEFINE(enumTable<Enum>().open(2))

} // namespace zorv::CommandClassType
