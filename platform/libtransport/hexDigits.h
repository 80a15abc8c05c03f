// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace zorv {

/// The lowest `digits` hex digits of `value`, lower case, with leading zeros.
inline std::string hexDigits(unsigned int value, unsigned int digits) {
    static constexpr char const* alphabet = "0123456789abcdef";
    std::string text(digits, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, value >>= 4U) { *digit = alphabet[value & 0xFU]; }
    return text;
}

/// All hex digits of `value`, but at least as many as `least`.
inline std::string hexDigitsFrom(unsigned int value, unsigned int least) {
    constexpr unsigned int most = 2 * sizeof value;
    auto digits = least;
    while (digits < most && value >> (4U * digits) != 0) { ++digits; }
    return hexDigits(value, digits);
}

} // namespace zorv
