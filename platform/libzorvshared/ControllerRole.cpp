// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/ControllerRole.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::ControllerRole {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::ControllerRole
