// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

namespace zorv {

/// How many columns a terminal shows the UTF-8 text in: none for a combining character, two for a wide one.
std::size_t displayWidth(std::string const& text);

/// The text where it takes at most so many columns, otherwise its start, and "…" for the rest.
std::string fitted(std::string const& text, std::size_t columns);

} // namespace zorv
