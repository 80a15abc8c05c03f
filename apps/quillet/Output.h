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

    /// Throws an ExitError if the output cannot be written; its text is empty if the reader has closed the output.
    void show(TMessage const& message);

    /// Shows something that is not a message: its rows, or its lines of JSON. An empty JSON text prints nothing. Throws
    /// as above.
    void show(StringVecVec const& rows, std::string const& json);

    /// Throws an ExitError because the daemon did not understand the request. With JSON output, the rejection is shown
    /// first.
    [[noreturn]] void showRejection(Confirmable const& rejection);

private:
    void checkWritten();

    std::ostream& os_;
    Table table_;
    bool json_;
};

} // namespace zorv
