// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace zorv {

/// Asks on the terminal whether to go on with what cannot be undone. An ExitError where the answer is not yes, or where
/// there is no terminal to ask on.
void confirm(std::string const& what);

} // namespace zorv
