// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Version of the Z-Wave protocol that a node speaks, as the lowest bits of its capability byte tell it.
namespace ProtocolVersion {

enum Enum : int { version0, version1, version2, version3, version4, version5, version6, version7 };

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace ProtocolVersion

/// First byte of what a node reports of itself: a set of flags, and its ProtocolVersion in the lowest three bits.
namespace Capability {

enum Enum : int {
    versionMask = 0x07,
    baud9600 = 0x08,
    baud40000 = 0x10,
    baudReserved = 0x20,
    routing = 0x40,
    listening = 0x80 ///< always receives; any other node sleeps, wholly or between beams
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace Capability

} // namespace zorv
