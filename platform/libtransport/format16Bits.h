// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <string>

namespace zorv {

/// Four lower-case hex digits, after "0x" where `prefix` is true.
ZORV_EXPORT std::string format16Bits(unsigned short value, bool prefix);

} // namespace zorv
