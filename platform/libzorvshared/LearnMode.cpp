// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/LearnMode.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::LearnMode {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::LearnMode
