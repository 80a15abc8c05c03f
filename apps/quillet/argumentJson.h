// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <json/forwards.h>

#include <string>
#include <vector>

namespace zorv {

struct TypeDescriptor;

/// The value of a member as users type it, by the member's type: a node as 5 or c0ffee01:5, an enumeration by its text,
/// a command as its bytes in hex, a list as words that may hold several elements between commas.
///
/// A std::invalid_argument, with the nearest text that there is, for what is no such value.
Json::Value argumentJson(TypeDescriptor const& type, std::vector<std::string> const& words);

/// How the value is written in a help text.
std::string argumentHelp(TypeDescriptor const& type);

} // namespace zorv
