// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Table.h"

#include "apps/quillet/displayWidth.h"
#include "apps/quillet/stateColour.h"

#include "platform/libzorvlogger/printable.h"

#include <algorithm>
#include <numeric>
#include <ostream>

namespace zorv {

namespace {

constexpr std::size_t gap = 2; // blanks between columns

constexpr char const* whiteSpace = "\t\n\v\f\r";

void trimEnd(std::string& text) { text.erase(text.find_last_not_of(' ') + 1); }

void clean(std::string& cell) {
    for (auto at = cell.find_first_of(whiteSpace); at != std::string::npos; at = cell.find_first_of(whiteSpace, at)) {
        cell[at] = ' ';
    }
    trimEnd(cell);
    cell = printable(cell);
}

} // namespace

void Table::add(StringVecVec rows, std::vector<unsigned int> const& widths) {
    auto const widen = [this](std::size_t column, std::size_t width) {
        if (widths_.size() <= column) { widths_.resize(column + 1, 0); }
        widths_[column] = std::max(widths_[column], width);
    };
    for (std::size_t column = 0; column < widths.size(); ++column) { widen(column, widths[column]); }
    std::size_t columns = 0;
    for (auto& row : rows) {
        columns = std::max(columns, row.size());
        for (std::size_t column = 0; column < row.size(); ++column) {
            clean(row[column]);
            widen(column, displayWidth(row[column]));
        }
    }
    auto const limit = widthLimit(columns);
    for (auto const& row : rows) { *os_ << line(row, limit) << '\n'; }
    os_->flush();
}

/// The most that a column may take, so that these columns fit into the terminal.
std::size_t Table::widthLimit(std::size_t columns) const {
    auto const widest = widths_.empty() ? 0 : *std::max_element(widths_.begin(), widths_.end());
    auto const space = isFitted_ ? terminal_.columns() : 0;
    if (space == 0 || columns == 0) { return widest; }
    auto const total = [&](std::size_t limit) {
        auto const add = [limit](std::size_t sum, std::size_t width) { return sum + std::min(width, limit); };
        auto const end = widths_.begin() + static_cast<std::ptrdiff_t>(columns);
        return std::accumulate(widths_.begin(), end, gap * (columns - 1), add);
    };
    auto limit = std::min(widest, space);
    while (limit > 1 && total(limit) > space) { --limit; }
    return limit;
}

std::string Table::line(std::vector<std::string> const& row, std::size_t limit) const {
    std::string line;
    std::size_t blanks = 0; // before the next cell that shows anything
    for (std::size_t column = 0; column < row.size(); ++column) {
        auto const cell = fitted(row[column], limit);
        auto const width = std::min(widths_[column], limit);
        if (!cell.empty()) {
            line.append(blanks, ' ');
            line += painted(cell);
            blanks = 0;
        }
        blanks += width - displayWidth(cell) + gap;
    }
    return line;
}

std::string Table::painted(std::string const& cell) const {
    // Members are shown as they are written, texts in quotes.
    bool const isQuoted = cell.size() > 1 && cell.front() == '"' && cell.back() == '"';
    auto const* const colour = hasColour_ ? stateColour(isQuoted ? cell.substr(1, cell.size() - 2) : cell) : nullptr;
    return colour == nullptr ? cell : colour + cell + escape::plain;
}

void Table::add(CliViewer const& viewer) {
    StringVecVec rows;
    viewer.accumulateDisplay(rows);
    add(std::move(rows), viewer.widths());
}

} // namespace zorv
