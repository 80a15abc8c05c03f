// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace zorv {

struct TypeDescriptor;
struct TypedWord;

// Words that may stand where the user types.

/// The messages of the catalogue.
std::vector<std::string> messageWords();

/// The values of a type that can be listed: texts, nodes that exist. In a list, what stands before the last comma stays.
std::vector<std::string> valueWords(TypeDescriptor const& type, TypedWord const& typed);

/// The words of a line, and the last one even where it is empty. Quotes at the start of a word enclose blanks; an object,
/// from "{" on, goes to the end of the line.
std::vector<std::string> splitLine(std::string const& line);

} // namespace zorv
