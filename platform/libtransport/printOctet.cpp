// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/printOctet.h"

#include "platform/libtransport/hexDigits.h"

#include <ostream>

namespace zorv {

std::ostream& printOctet(std::ostream& os, unsigned char const& value) {
    auto const digits = hexDigits(value, 2);
    return os.write(digits.data(), static_cast<std::streamsize>(digits.size()));
}

} // namespace zorv
