// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/ZwApiCommand.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::ZwApiCommand {

ZORV_ENUM_DEFINE(enumTable<Enum>().open(2))

} // namespace zorv::ZwApiCommand
