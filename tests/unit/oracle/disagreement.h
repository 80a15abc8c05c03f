// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace zorv {

/// In what the Serializer and the tree reader differ on a text, which is read in ways that the seed determines; empty
/// where they agree.
std::string disagreement(std::string const& text, unsigned int seed);

} // namespace zorv
