// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/SpecificDeviceType.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::SpecificDeviceType {

ZORV_ENUM_DEFINE(enumTable<Enum>().open(2))

} // namespace zorv::SpecificDeviceType
