// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/uuidText.h"

#include <array>

namespace zorv {

namespace {

constexpr std::string_view alphabet = "0123456789abcdef";

/// Set in the value of what is no digit, and in nothing else.
constexpr unsigned int noDigit = 0x100;

constexpr auto makeDigitValues() {
    std::array<unsigned short, 256> values{};
    for (auto& value : values) { value = noDigit; }
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
        values[static_cast<unsigned char>(alphabet[i])] = static_cast<unsigned short>(i);
    }
    return values;
}

constexpr auto digitValues = makeDigitValues();

/// A hyphen comes before these bytes.
constexpr bool followsHyphen(std::size_t byte) { return byte == 4 || byte == 6 || byte == 8 || byte == 10; }

} // namespace

char* putUuid(char* at, boost::uuids::uuid const& id) noexcept {
    for (std::size_t i = 0; i < id.size(); ++i) {
        if (followsHyphen(i)) { *at++ = '-'; }
        *at++ = alphabet[id.data[i] >> 4U];
        *at++ = alphabet[id.data[i] & 0xFU];
    }
    return at;
}

bool parseUuid(std::string_view text, boost::uuids::uuid& id) noexcept {
    if (text.size() != uuidTextSize) { return false; }
    boost::uuids::uuid read{};
    unsigned int wrong = 0; // collected without a branch for each digit
    auto const* at = text.data();
    for (std::size_t i = 0; i < read.size(); ++i) {
        if (followsHyphen(i)) { wrong |= static_cast<unsigned int>(*at++ != '-') * noDigit; }
        auto const high = digitValues[static_cast<unsigned char>(*at++)];
        auto const low = digitValues[static_cast<unsigned char>(*at++)];
        wrong |= static_cast<unsigned int>(high | low);
        read.data[i] = static_cast<unsigned char>(high << 4U | low);
    }
    if ((wrong & noDigit) != 0) { return false; }
    id = read;
    return true;
}

} // namespace zorv
