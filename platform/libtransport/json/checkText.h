// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zorv {

/// Where an object, an array or a long string of a text ends. They are numbered in the order in which they begin.
struct Extent {
    std::uint32_t end = 0;   ///< place of the closing bracket or quote
    std::uint32_t next = 0;  ///< number of the first one that begins behind it
    std::uint32_t count = 0; ///< members or elements; of a string, whether it has escapes
};

/// What is known of a text once it has been checked.
struct TextShape {
    std::vector<Extent> extents; ///< of all objects, arrays and long strings
    std::size_t depth = 0;       ///< how deep they nest
};

/// Checks that a text is one JSON value, completely: its grammar and its limits (limits.h), that strings are UTF-8, that
/// no object has a key twice and that every number fits a double.
///
/// The first thing that is wrong is a SerializerError with line and column. The time is linear in the text's size, but
/// for the keys of a large object, which are sorted.
TextShape checkText(std::string const& text);

} // namespace zorv
