// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/json/numbers.h"

#include "platform/libtransport/json/scan.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

namespace zorv {

namespace {

char const* skipDigits(char const* at) {
    while (scan::isDigit(*at)) { ++at; }
    return at;
}

/// Steps over at least one digit; null where there is none.
char const* skipSomeDigits(char const* at) { return scan::isDigit(*at) ? skipDigits(at + 1) : nullptr; }

char const* skipExponent(char const* at) {
    ++at;
    if (*at == '+' || *at == '-') { ++at; }
    return skipSomeDigits(at);
}

/// Whether a number that from_chars finds out of range is too small, not too large.
///
/// The power of ten of its first digit that is not zero says which; it is far from 0 either way.
bool isTiny(std::string_view number) {
    auto const mantissa = number.substr(0, number.find_first_of("eE"));
    auto const first = mantissa.find_first_of("123456789");
    auto const point = std::min(mantissa.find('.'), mantissa.size());
    if (first == std::string_view::npos) { return true; }
    std::int64_t power = 0;
    if (mantissa.size() < number.size()) {
        auto const* begin = number.data() + mantissa.size() + 1;
        if (*begin == '+') { ++begin; }
        if (std::from_chars(begin, number.data() + number.size(), power).ec == std::errc::result_out_of_range) {
            return *begin == '-';
        }
    }
    // No text is long enough to bring the sum out of range, once the exponent is kept away from the ends.
    constexpr auto far = std::numeric_limits<std::int64_t>::max() / 2;
    return std::clamp(power, -far, far) + static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) < 0;
}

} // namespace

char const* skipNumber(char const* at) {
    if (*at == '-') { ++at; }
    at = *at == '0' ? at + 1 : skipSomeDigits(at);
    if (at == nullptr || scan::isDigit(*at)) { return nullptr; } // a zero leads no other digits
    if (*at == '.') { at = skipSomeDigits(at + 1); }
    if (at != nullptr && (*at == 'e' || *at == 'E')) { at = skipExponent(at); }
    return at;
}

bool isWhole(std::string_view number) { return number.find_first_of(".eE") == std::string_view::npos; }

bool fitsDouble(std::string_view number) {
    // So few digits make no number that is too large, unless there is an exponent.
    constexpr auto few = static_cast<std::size_t>(std::numeric_limits<double>::max_exponent10);
    if (number.size() <= few && number.find_first_of("eE") == std::string_view::npos) { return true; }
    double value = 0;
    auto const* const end = number.data() + number.size();
    return std::from_chars(number.data(), end, value).ec != std::errc::result_out_of_range || isTiny(number);
}

double toDouble(std::string_view number) {
    double value = 0;
    std::from_chars(number.data(), number.data() + number.size(), value);
    // What is too small leaves the value as it was. A whole number has no zero below zero.
    if (value == 0 && (isWhole(number) || number.front() != '-')) { return 0; }
    return value == 0 ? -0.0 : value;
}

} // namespace zorv
