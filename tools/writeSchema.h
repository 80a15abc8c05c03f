// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tools/WireClasses.h"

#include <iosfwd>

namespace zorv {

/// Writes the JSON Schema (draft 2020-12) of all that the library writes.
///
/// Readers accept more: keys in any order, absent keys and unknown keys.
void writeSchema(std::ostream& os, std::map<std::string, WireClass> const& classes);

} // namespace zorv
