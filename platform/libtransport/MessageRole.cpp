// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/MessageRole.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::MessageRole {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::MessageRole
