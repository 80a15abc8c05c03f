// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/config.hpp>
#include <boost/current_function.hpp>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace zorv {

/// Rows of cells; rows may have different lengths.
using StringVecVec = std::vector<std::vector<std::string>>;

/// Base of everything that shows itself as rows of the command-line client's tables.
///
/// The platform's message base derives from it, so this header uses nothing of the platform; what is not a template is
/// defined in libtransport.
class BOOST_SYMBOL_VISIBLE CliViewer {
public:
    virtual ~CliViewer();

    /// Appends the object's rows.
    virtual void accumulateDisplay(StringVecVec& rows) const = 0;

    /// Widths that the object's displays have asked for so far, by column, in characters; 0 leaves the width to the
    /// client, and so does a missing entry.
    std::vector<unsigned int> const& widths() const noexcept { return widths_; }

    /// Writes one cell: column 0 starts a new row, any other column goes into the last row, which grows with empty
    /// cells as needed. A cell that holds a text already is overwritten with a warning.
    ///
    /// A value that is neither a number nor a text shows as its `print` writes it, or else its `operator<<`.
    ///
    /// Errors: std::out_of_range for another column than 0 in an empty table, and for one that no row can have.
    template <class T> static void accumulateDisplayValue(StringVecVec& rows, std::size_t column, T const& value) {
        if (column == 0) { rows.emplace_back(); }
        setCell(rows, column, format(value), BOOST_CURRENT_FUNCTION);
    }

protected:
    CliViewer() = default;
    CliViewer(CliViewer const&) = default;
    CliViewer& operator=(CliViewer const&) = default;

    /// Asks for the width of a column; columns before it that nobody asked for are left to the client.
    ///
    /// Errors: std::out_of_range for a column that no table can have.
    void width(std::size_t column, unsigned int characters) const;

private:
    template <class T, class = void> struct Prints : std::false_type {};
    template <class T>
    struct Prints<T, std::void_t<decltype(std::declval<T const&>().print(std::declval<std::ostream&>()))>>
        : std::true_type {};

    template <class T> static std::string format(T const& value) {
        if constexpr (std::is_same_v<T, bool>) {
            return value ? "1" : "0";
        } else if constexpr (std::is_same_v<T, unsigned char>) {
            return formatOctet(value);
        } else if constexpr (std::is_same_v<T, char> || std::is_same_v<T, signed char>) {
            return std::string(1, static_cast<char>(value));
        } else if constexpr (std::is_integral_v<T>) {
            return std::to_string(value);
        } else if constexpr (std::is_convertible_v<T const&, char const*>) {
            return formatText(value);
        } else {
            return formatBy(&write<T>, &value);
        }
    }

    static std::string format(std::string const& value) { return value; }

    template <class T> static void write(std::ostream& os, void const* value) {
        if constexpr (Prints<T>::value) {
            static_cast<T const*>(value)->print(os);
        } else {
            os << *static_cast<T const*>(value);
        }
    }

    static std::string formatOctet(unsigned char value);
    static std::string formatText(char const* text);
    static std::string formatBy(void (*write)(std::ostream& os, void const* value), void const* value);
    static void setCell(StringVecVec& rows, std::size_t column, std::string&& text, char const* function);

    mutable std::vector<unsigned int> widths_;
};

} // namespace zorv
