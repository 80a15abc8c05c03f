// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <string>
#include <vector>

namespace zorv {

/// Splits `text` at each of the characters in `delimiters` and puts the pieces, in order, in place of what `parts` held.
///
/// `keepEmpty` keeps the empty pieces that lie between neighbouring delimiters and at the ends; an empty text gives no
/// pieces at all.
ZORV_EXPORT void StringToVector(std::string const& text, std::vector<std::string>& parts, std::string const& delimiters,
                                bool keepEmpty);

} // namespace zorv
