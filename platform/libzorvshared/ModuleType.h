// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Kind of a Z-Wave module: the library type that it reports over the serial interface.
namespace ModuleType {

enum Enum : int {
    none = 0,
    staticController = 1,
    portableController = 2,
    enhancedSlave = 3,
    slave = 4,
    installer = 5,
    routingSlave = 6,
    bridgeController = 7,
    deviceUnderTest = 8,
    avRemote = 10,
    avDevice = 11,
    unknown = 0xFF ///< no module has been asked yet
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace ModuleType

} // namespace zorv
