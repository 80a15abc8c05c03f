// SPDX-License-Identifier: Apache-2.0
#include "transport/CliViewer.h"

#include "platform/libtransport/printOctet.h"
#include "platform/libzorvlogger/Logger.h"

#include <locale>
#include <sstream>
#include <stdexcept>

namespace zorv {

namespace {

std::ostringstream makeStream() {
    std::ostringstream os;
    os.imbue(std::locale::classic()); // numbers are plain decimals, whatever the client's locale makes of them
    return os;
}

/// Makes room for the column; the error names the operation that it was asked of.
template <class T> void growTo(std::vector<T>& cells, std::size_t column, char const* operation) {
    if (column >= cells.max_size()) {
        throw std::out_of_range(std::string(operation) + ": no row has a column " + std::to_string(column));
    }
    if (cells.size() <= column) { cells.resize(column + 1); }
}

} // namespace

CliViewer::~CliViewer() = default;

void CliViewer::width(std::size_t column, unsigned int characters) const {
    growTo(widths_, column, "width");
    widths_[column] = characters;
}

std::string CliViewer::formatOctet(unsigned char value) {
    auto os = makeStream();
    printOctet(os, value);
    return os.str();
}

std::string CliViewer::formatText(char const* text) { return text == nullptr ? "" : text; }

std::string CliViewer::formatBy(void (*write)(std::ostream& os, void const* value), void const* value) {
    auto os = makeStream();
    write(os, value);
    return os.str();
}

void CliViewer::setCell(StringVecVec& rows, std::size_t column, std::string&& text, char const* function) {
    if (rows.empty()) { throw std::out_of_range("accumulateDisplayValue: no row for this column"); }
    auto& row = rows.back();
    growTo(row, column, "accumulateDisplayValue");
    if (!row[column].empty()) {
        // Log filters of the field match this place, so it stays the same wherever the code moves.
        Logger::log(LogLevel::warn, "accumulateDisplayValue: resetting already set column",
                    boost::source_location("transport/CliViewer", 125, function));
    }
    row.at(column) = std::move(text);
}

} // namespace zorv
