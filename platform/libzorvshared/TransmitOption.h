// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// How the controller sends a frame: the transmit options of the serial interface, a set of flags.
namespace TransmitOption {

enum Enum : int {
    ack = 0x01,       ///< asks for an acknowledgement
    lowPower = 0x02,  ///< reaches near nodes only
    autoRoute = 0x04, ///< tries routes where the direct way fails
    noRoute = 0x10,   ///< never routes
    explore = 0x20    ///< looks for a new route as a last resort
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

/// How frames are sent unless something else is asked for: 37.
constexpr auto defaultOptions = static_cast<Enum>(ack | autoRoute | explore);

} // namespace TransmitOption

} // namespace zorv
