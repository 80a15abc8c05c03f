// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <string>
#include <string_view>

namespace zorv {

// Texts from a file or a peer may contain control characters that steer a terminal or forge a line of the log. These
// functions show them in hex. A backslash stays as it is, so a text that was shown once is not changed again.

/// The text with its control characters and the bytes that are not UTF-8 as hex: `\x1b[31m`, `\xc2\x9b`, `\xff`.
///
/// Control characters are C0 (line ends included), DEL, and C1 in its UTF-8 form, U+0080 to U+009F.
ZORV_EXPORT std::string printable(std::string_view text);

/// As above for a text of several lines, such as an error with its stack trace: a line feed stays at the end and before
/// a line that is indented, so that no text begins a line which looks like an event of its own.
ZORV_EXPORT std::string printableLines(std::string_view text);

/// JSON of the same value whose strings hold neither DEL nor C1; JSON escapes the others by itself.
ZORV_EXPORT std::string printableJson(std::string_view json);

} // namespace zorv
