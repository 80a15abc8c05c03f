// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/TResult.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::TResult {

ZORV_ENUM_DEFINE(enumTable<Enum>().named("ZResult"))

} // namespace zorv::TResult
