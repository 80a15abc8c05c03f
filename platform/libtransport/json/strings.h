// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/TextBuffer.h"

#include <string>
#include <string_view>

namespace zorv {

/// Steps over one UTF-8 sequence of more than one byte; false where the bytes are not one.
bool skipSequence(char const*& at, char const* end);

/// Steps over the escape that begins with the backslash at `at`; the complaint where it is none that JSON has.
char const* skipEscape(char const*& at, char const* end);

/// Appends the text that a string's characters between its quotes stand for. They have been checked.
void appendUnescaped(std::string& text, std::string_view escaped);

/// Appends a text as the characters of a JSON string, between quotes; false, and nothing appended, where it is not UTF-8.
bool appendQuoted(TextBuffer& json, std::string_view text);

} // namespace zorv
