// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/Table.h"

#include "zwave/libquillet/Confirmable.h"

#include <iosfwd>
#include <string>

namespace zorv {

/// Shows a command's messages on standard output: as rows of one table, or as one line of JSON each.
class Output {
public:
    Output(std::ostream& os, bool json) : os_(os), table_(os), json_(json) {}

    /// Ends the command with an ExitError where the output cannot be written: without a text where nobody reads it.
    void show(TMessage const& message);

    /// What is no message: its rows, or its lines of JSON, none where the text is empty; ends as above.
    void show(StringVecVec const& rows, std::string const& json);

    /// Ends the command with an ExitError because the daemon did not understand it; the rejection is shown as JSON only.
    [[noreturn]] void showRejection(Confirmable const& rejection);

private:
    void checkWritten();

    std::ostream& os_;
    Table table_;
    bool json_;
};

} // namespace zorv
