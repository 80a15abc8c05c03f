// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Table.h"

#include "platform/libzorvlogger/printable.h"

#include <algorithm>
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

/// Number of characters of a UTF-8 text.
std::size_t length(std::string const& text) {
    auto const startsCharacter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), startsCharacter));
}

} // namespace

void Table::add(StringVecVec rows, std::vector<unsigned int> const& widths) {
    auto const widen = [this](std::size_t column, std::size_t width) {
        if (widths_.size() <= column) { widths_.resize(column + 1, 0); }
        widths_[column] = std::max(widths_[column], width);
    };
    for (std::size_t column = 0; column < widths.size(); ++column) { widen(column, widths[column]); }
    for (auto& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            clean(row[column]);
            widen(column, length(row[column]));
        }
    }
    for (auto const& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            line += row[column];
            line.append(widths_[column] - length(row[column]) + gap, ' ');
        }
        trimEnd(line);
        os_ << line << '\n';
    }
    os_.flush();
}

void Table::add(CliViewer const& viewer) {
    StringVecVec rows;
    viewer.accumulateDisplay(rows);
    add(std::move(rows), viewer.widths());
}

} // namespace zorv
