// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/BasicDeviceType.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::BasicDeviceType {

ZORV_ENUM_DEFINE(enumTable<Enum>().open(2))

} // namespace zorv::BasicDeviceType
