#include "platform/libtransport/format8Bits.h"

#include "platform/libtransport/format16Bits.h"
#include "platform/libtransport/hexDigits.h"
#include "platform/libtransport/printOctet.h"

#include <ostream>

namespace zorv {

std::string format8Bits(unsigned char const& value, bool prefix) { return (prefix ? "0x" : "") + hexDigits(value, 2); }

std::string format16Bits(unsigned short value, bool prefix) { return (prefix ? "0x" : "") + hexDigits(value, 4); }

std::ostream& printOctet(std::ostream& os, unsigned char const& value) {
    auto const digits = hexDigits(value, 2);
    return os.write(digits.data(), static_cast<std::streamsize>(digits.size()));
}

} // namespace zorv
