// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tools/WireClasses.h"

#include <iosfwd>

namespace zorv {

/// Writes the reference of all messages, records, enumerations and reading errors as Markdown.
///
/// The purpose of a message is the comment of its class in the headers below `sourceDir`. A class without one is a
/// std::runtime_error.
void writeReference(std::ostream& os, std::map<std::string, WireClass> const& classes, std::string const& sourceDir);

} // namespace zorv
