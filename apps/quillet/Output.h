// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/Table.h"

#include "zwave/libquillet/Confirmable.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace zorv {

enum class OutputFormat {
    table, ///< fitted to the terminal, if there is one
    wide,  ///< never cut
    json
};

struct OutputStyle {
    OutputFormat format = OutputFormat::table;
    bool hasTitles = true; ///< above the columns
};

/// Shows a command's messages on standard output: as rows of one table, or as one line of JSON each.
class Output {
public:
    Output(std::ostream& os, Terminal terminal, OutputStyle style);

    /// Throws an ExitError if the output cannot be written; its text is empty if the reader has closed the output.
    void show(TMessage const& message);

    /// Shows something that is not a message: its rows, or its lines of JSON. An empty JSON text prints nothing. Throws
    /// as above.
    void show(StringVecVec const& rows, std::string const& json);

    /// The titles of the rows to come, above the first of them. Columns of rows that come one by one have `widths`, so
    /// that they stay in line.
    void titles(std::vector<std::string> const& titles, std::vector<unsigned int> widths = {});

    /// Has the next rows begin a table of their own, whose columns are as wide as they need.
    void startTable();

    /// A line that is no row, whatever the format. Throws as above.
    void showLine(std::string const& text);

    bool isJson() const noexcept { return style_.format == OutputFormat::json; }
    bool hasTitles() const noexcept { return style_.hasTitles; }

    /// Throws an ExitError because the daemon did not understand the request. With JSON output, the rejection is shown
    /// first.
    [[noreturn]] void showRejection(Confirmable const& rejection);

private:
    void checkWritten();

    std::ostream& os_;
    Terminal terminal_;
    OutputStyle style_;
    Table table_;
    StringVecVec titles_; ///< that wait for their first row
    std::vector<unsigned int> widths_;
};

} // namespace zorv
