// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/DeviceLights.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::DeviceLights {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::DeviceLights
