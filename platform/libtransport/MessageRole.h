// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv::MessageRole {

/// What a message is to its receiver.
enum Enum : int { none, request, response, report };

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace zorv::MessageRole
