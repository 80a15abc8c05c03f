// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/firmwareVersionImpl.h"

#include <boost/crc.hpp>

#include <algorithm>

namespace zorv::modulesim {

namespace {

constexpr std::size_t longestVersion = 11;
constexpr std::uint16_t polynomial = 0x1021;
constexpr std::uint16_t firstRemainder = 0x1D0F;
constexpr serialapi::Byte padding = 0xFF;

/// With or without padding at its end.
bool hasItsChecksum(serialapi::Bytes const& image) {
    boost::crc_basic<16> crc(polynomial, firstRemainder);
    auto const rest = std::find_if(image.rbegin(), image.rend(), [](auto byte) { return byte != padding; }).base();
    crc.process_block(image.data(), image.data() + (rest - image.begin()));
    for (auto end = rest; end != image.end() && crc.checksum() != 0; ++end) { crc.process_byte(*end); }
    return crc.checksum() == 0;
}

} // namespace

std::uint16_t firmwareChecksum(serialapi::Bytes const& bytes, std::size_t offset, std::size_t length,
                               std::uint16_t seed) {
    boost::crc_basic<16> crc(polynomial, seed);
    auto const begin = std::min(offset, bytes.size());
    crc.process_bytes(bytes.data() + begin, std::min(length, bytes.size() - begin));
    return crc.checksum();
}

std::optional<std::string> firmwareVersion(serialapi::Bytes const& image) {
    auto const end = std::find(image.begin(), image.end(), serialapi::Byte{0});
    std::string version(image.begin(), end);
    bool const hasVersion = end != image.end() && !version.empty() && version.size() <= longestVersion;
    if (!hasVersion || !hasItsChecksum(image)) { return std::nullopt; }
    return version;
}

} // namespace zorv::modulesim
