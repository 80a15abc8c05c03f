// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace zorv {

/// What switches a terminal to the colour of a state, such as a result or a node's status: green where all is well, yellow
/// while it is not decided, red where it is not. Null for any other text.
char const* stateColour(std::string const& text);

} // namespace zorv
