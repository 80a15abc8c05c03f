// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "transport/CliViewer.h"

#include <cstddef>

namespace zorv {

/// Appends one row, its cells from column 0 on: a label and its value, or as many cells as a table has columns.
template <class... Cells> void displayRow(StringVecVec& rows, Cells const&... cells) {
    std::size_t column = 0;
    (CliViewer::accumulateDisplayValue(rows, column++, cells), ...);
}

} // namespace zorv
