// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "transport/CliViewer.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace zorv {

/// Shows rows as a table of aligned columns, as they come.
///
/// A column is as wide as the message asks for or as the longest of the cells that came so far, whichever is more. A cell
/// may hold what a device or another client sent: a line end or a tab in it is shown as a blank, other control characters
/// as printable() shows them. White space at the end of a cell or a line is left out.
class Table {
public:
    explicit Table(std::ostream& os) : os_(os) {}

    void add(StringVecVec rows, std::vector<unsigned int> const& widths);

    /// Shows the rows that the viewer accumulates.
    void add(CliViewer const& viewer);

private:
    std::ostream& os_;
    std::vector<std::size_t> widths_; // in characters
};

} // namespace zorv
