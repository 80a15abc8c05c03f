#pragma once

#include "platform/libtransport/printOctet.h"
#include "platform/libzorvlogger/Logger.h"

#include <boost/current_function.hpp>

#include <cstddef>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace zorv {

/// Rows of cells; rows may have different lengths.
using StringVecVec = std::vector<std::vector<std::string>>;

/// Base of everything that shows itself as rows of the command-line client's tables.
class BOOST_SYMBOL_VISIBLE CliViewer {
public:
    virtual ~CliViewer() = default;

    /// Appends the object's rows.
    virtual void accumulateDisplay(StringVecVec& rows) const = 0;

    /// Widths that the object's displays have asked for so far, by column, in characters; 0 leaves the width to the
    /// client, and so does a missing entry.
    std::vector<unsigned int> const& widths() const noexcept { return widths_; }

    /// Writes one cell: column 0 starts a new row, any other column goes into the last row, which grows with empty
    /// cells as needed. A cell that holds a text already is overwritten with a warning.
    ///
    /// Errors: std::out_of_range for another column than 0 in an empty table.
    template <class T> static void accumulateDisplayValue(StringVecVec& rows, std::size_t column, T const& value) {
        if (column == 0) { rows.emplace_back(); }
        auto text = format(value);
        if (rows.empty()) { throw std::out_of_range("accumulateDisplayValue: no row for this column"); }
        auto& row = rows.back();
        if (row.size() <= column) { row.resize(column + 1); }
        if (!row[column].empty()) { warnAboutSetColumn(BOOST_CURRENT_FUNCTION); }
        row.at(column) = std::move(text);
    }

protected:
    CliViewer() = default;
    CliViewer(CliViewer const&) = default;
    CliViewer& operator=(CliViewer const&) = default;

    /// Asks for the width of a column; columns before it that nobody asked for are left to the client.
    void width(std::size_t column, unsigned int characters) const {
        if (widths_.size() <= column) { widths_.resize(column + 1, 0); }
        widths_[column] = characters;
    }

private:
    template <class T, class = void> struct Prints : std::false_type {};
    template <class T>
    struct Prints<T, std::void_t<decltype(std::declval<T const&>().print(std::declval<std::ostream&>()))>>
        : std::true_type {};

    template <class T> static std::string format(T const& value) {
        std::ostringstream os;
        os.imbue(std::locale::classic()); // numbers are plain decimals, whatever the client's locale makes of them
        if constexpr (std::is_same_v<T, unsigned char>) {
            printOctet(os, value);
        } else if constexpr (Prints<T>::value) {
            value.print(os);
        } else {
            os << value;
        }
        return os.str();
    }

    static std::string format(std::string const& value) { return value; }

    static void warnAboutSetColumn(char const* function) {
        // Log filters of the field match this place, so it stays the same wherever the code moves.
        Logger::log(LogLevel::warn, "accumulateDisplayValue: resetting already set column",
                    boost::source_location("transport/CliViewer", 125, function));
    }

    mutable std::vector<unsigned int> widths_;
};

} // namespace zorv
