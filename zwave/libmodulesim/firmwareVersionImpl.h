// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

// An image of the simulation begins with the version that GetVersion tells afterwards, which ends with a zero. Its last two
// bytes are the checksum over all before them.

namespace zorv::modulesim {

std::uint16_t firmwareChecksum(serialapi::Bytes const& bytes, std::size_t offset, std::size_t length,
                               std::uint16_t seed);

/// The version of an image, behind which there may be padding; none where the image is not good.
std::optional<std::string> firmwareVersion(serialapi::Bytes const& image);

} // namespace zorv::modulesim
