// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/GenericDeviceType.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::GenericDeviceType {

ZORV_ENUM_DEFINE(enumTable<Enum>().open(2))

} // namespace zorv::GenericDeviceType
