// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/ManufacturerId.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::ManufacturerId {

ZORV_ENUM_DEFINE(enumTable<Enum, zorv>().open(4))

} // namespace zorv::ManufacturerId
