// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

/// How much one text may hold. The writer refuses what the reader would refuse.
namespace zorv::limits {

/// Deepest nesting of objects and arrays.
constexpr std::size_t maxDepth = 128;

/// Most values, the objects and arrays among them. Each costs memory and time that its few bytes do not show.
constexpr std::size_t maxValues = std::size_t{1} << 20;

/// Most entries of a map; a network has 232 nodes. A peer that knows how keys are hashed could otherwise send keys that
/// all collide, and enough of them to stop this process for minutes.
constexpr std::size_t maxPairs = 4096;

/// Most characters between the quotes of a short string, escapes counted as they are written. The check of a text notes
/// where longer ones end, so that they are not searched for it again.
constexpr std::size_t longestShort = 64;

/// Most bytes: places in a text are kept in 32 bits.
constexpr std::uint64_t maxBytes = std::uint64_t{0xFFFFFFFF} - 1;

} // namespace zorv::limits
