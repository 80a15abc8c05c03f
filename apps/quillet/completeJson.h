// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace zorv {

struct TypeDescriptor;

/// What the start of an object can go on with, each with all that was typed: members of the type, texts of enumerations,
/// "true" and "false".
std::vector<std::string> completeJson(TypeDescriptor const& type, std::string const& typed);

} // namespace zorv
