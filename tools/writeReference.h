// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tools/WireClasses.h"

#include <iosfwd>

namespace zorv {

/// Writes the reference of all messages, records, enumerations and reading errors as Markdown.
///
/// What a message is for is the comment of its class, taken from the headers below `sourceDir`; a class without one is
/// a std::runtime_error.
void writeReference(std::ostream& os, std::map<std::string, WireClass> const& classes, std::string const& sourceDir);

} // namespace zorv
