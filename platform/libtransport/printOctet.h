// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <iosfwd>

namespace zorv {

/// Writes two lower-case hex digits; the stream's number base, fill and width are left as they were.
ZORV_EXPORT std::ostream& printOctet(std::ostream& os, unsigned char const& value);

} // namespace zorv
