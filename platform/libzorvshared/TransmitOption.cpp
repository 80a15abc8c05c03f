// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/TransmitOption.h"

#include "platform/libtransport/tables/FlagTable.h"

namespace zorv::TransmitOption {

ZORV_ENUM_DEFINE(flagTable<Enum>().emptySet("none"))

} // namespace zorv::TransmitOption
