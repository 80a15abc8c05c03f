// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/Capability.h"

#include "platform/libtransport/tables/FlagTable.h"

namespace zorv::ProtocolVersion {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::ProtocolVersion

namespace zorv::Capability {

ZORV_ENUM_DEFINE(flagTable<Enum>().emptySet("none").field(versionMask, ProtocolVersion::table))

} // namespace zorv::Capability
