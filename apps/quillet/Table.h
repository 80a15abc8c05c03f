// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/Terminal.h"

#include "transport/CliViewer.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace zorv {

/// Shows rows as a table of aligned columns, as they come.
///
/// A column is as wide as the message asks for or as the longest of the cells that came so far, whichever is more. Where
/// a terminal is narrower than the table, the widest columns are cut until it fits. A cell may hold what a device or
/// another client sent: a line end or a tab in it is shown as a blank, other control characters as printable() shows
/// them. White space at the end of a cell or a line is left out. Colours tell states, on a terminal that has colours.
class Table {
public:
    enum class Width { fitted, natural };

    explicit Table(std::ostream& os, Terminal terminal = {}, Width width = Width::fitted)
        : os_(&os), terminal_(terminal), isFitted_(width == Width::fitted), hasColour_(terminal.hasColour()) {}

    void add(StringVecVec rows, std::vector<unsigned int> const& widths);

    /// Shows the rows that the viewer accumulates.
    void add(CliViewer const& viewer);

private:
    std::size_t widthLimit(std::size_t columns) const;
    std::string line(std::vector<std::string> const& row, std::size_t limit) const;
    std::string painted(std::string const& cell) const;

    std::ostream* os_;
    Terminal terminal_;
    bool isFitted_;
    bool hasColour_;
    std::vector<std::size_t> widths_; // as displayWidth() counts
};

} // namespace zorv
