// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "transport/CliViewer.h"

#include <string>
#include <vector>

namespace zorv {

class TMessage;

/// The message's own rows. One that has none, or cannot show them, is shown as a title, its result and its members, with
/// their values as they are written. Rows with titles above them can be had without.
StringVecVec messageRows(TMessage const& message, bool hasTitles = true);

/// A member of a message as people read it: texts without quotes, bytes in hex, nodes as they are typed.
struct MemberText {
    std::string name; ///< without the underscore at its end
    std::string value;
};

/// The members of the message's own class; none where the catalogue has no such class.
std::vector<MemberText> memberTexts(TMessage const& message);

/// As "name=value", with blanks between.
std::string membersLine(TMessage const& message);

} // namespace zorv
