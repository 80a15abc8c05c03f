// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Basic device type that a node reports.
///
/// The set is open: a value without a name is its two hex digits.
namespace BasicDeviceType {

enum Enum : int { unknown, controller, staticController, slave, routingSlave };

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace BasicDeviceType

} // namespace zorv
