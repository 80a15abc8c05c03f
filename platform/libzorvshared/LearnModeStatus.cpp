// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/LearnModeStatus.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::LearnModeStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::LearnModeStatus
