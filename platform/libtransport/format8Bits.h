// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <string>

namespace zorv {

/// Two lower-case hex digits, after "0x" where `prefix` is true.
ZORV_EXPORT std::string format8Bits(unsigned char const& value, bool prefix);

} // namespace zorv
