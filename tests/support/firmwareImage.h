// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/Bytes.h"

#include <boost/crc.hpp>

#include <cstddef>
#include <string>

namespace zorv {

/// Firmware for a simulated module: the version, something, and the checksum over both.
inline serialapi::Bytes firmwareImage(std::string const& version, std::size_t size) {
    serialapi::Bytes bytes(version.begin(), version.end());
    bytes.push_back(0);
    for (auto i = bytes.size(); i + 2 < size; ++i) { bytes.push_back(static_cast<serialapi::Byte>(i * 7)); }
    boost::crc_basic<16> crc(0x1021, 0x1D0F);
    crc.process_bytes(bytes.data(), bytes.size());
    bytes.push_back(static_cast<serialapi::Byte>(crc.checksum() >> 8U));
    bytes.push_back(static_cast<serialapi::Byte>(crc.checksum() & 0xFFU));
    return bytes;
}

} // namespace zorv
