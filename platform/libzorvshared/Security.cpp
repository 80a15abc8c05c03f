// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/Security.h"

#include "platform/libtransport/tables/FlagTable.h"

namespace zorv::Security {

ZORV_ENUM_DEFINE(flagTable<Enum>().emptySet("none"))

} // namespace zorv::Security
