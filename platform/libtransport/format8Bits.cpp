// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/format8Bits.h"

#include "platform/libtransport/hexDigits.h"

namespace zorv {

std::string format8Bits(unsigned char const& value, bool prefix) { return (prefix ? "0x" : "") + hexDigits(value, 2); }

} // namespace zorv
