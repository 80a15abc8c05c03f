// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/CommandClassAttribs.h"

#include "platform/libtransport/tables/FlagTable.h"

namespace zorv::CommandClassAttribs {

ZORV_ENUM_DEFINE(flagTable<Enum>().emptySet("none"))

} // namespace zorv::CommandClassAttribs
