// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/ControllerCapabilities.h"

#include "platform/libtransport/tables/FlagTable.h"

namespace zorv::ControllerCapabilities {

ZORV_ENUM_DEFINE(flagTable<Enum>().emptySet("none"))

} // namespace zorv::ControllerCapabilities
