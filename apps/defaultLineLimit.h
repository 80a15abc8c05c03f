// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace zorv {

/// Longest line that the daemon reads and answers unless an option says otherwise, in bytes.
constexpr std::size_t defaultLineLimit = std::size_t{8} << 20U;

} // namespace zorv
