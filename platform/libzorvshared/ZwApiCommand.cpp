// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/ZwApiCommand.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::ZwApiCommand {

// A function of a later module may have a number beyond a byte.
ZORV_ENUM_DEFINE(enumTable<Enum>().open(2, 8))

} // namespace zorv::ZwApiCommand
