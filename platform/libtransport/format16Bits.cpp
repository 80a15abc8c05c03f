// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/format16Bits.h"

#include "platform/libtransport/hexDigits.h"

namespace zorv {

std::string format16Bits(unsigned short value, bool prefix) { return (prefix ? "0x" : "") + hexDigits(value, 4); }

} // namespace zorv
