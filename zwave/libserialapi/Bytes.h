// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <vector>

namespace zorv::serialapi {

using Byte = std::uint8_t;
using Bytes = std::vector<Byte>;

} // namespace zorv::serialapi
