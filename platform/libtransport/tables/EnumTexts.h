// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/Serializer.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace zorv {

struct TypeDescriptor;

/// A value of an enumeration, or a flag of a set, and its text.
struct EnumRow {
    int value = 0;
    std::string_view text;
};

/// The numbers of rows by value, from the lowest value on: where the values are bytes, a row is found without a search.
struct EnumPlaces {
    static constexpr std::uint8_t none = 255;

    std::uint8_t const* first = nullptr;
    std::size_t size = 0;
};

/// The rows of a table by ascending value. A view: the table is a constant of the enumeration's source.
struct EnumRows {
    EnumRow const* first = nullptr;
    std::size_t size = 0;
    EnumPlaces places = {};

    constexpr EnumRow const* begin() const noexcept { return first; }
    constexpr EnumRow const* end() const noexcept { return first + size; }
};

/// How the numbers of an open set are written that have no text: "0x" and hex digits.
struct OpenDigits {
    unsigned int least = 0;
    unsigned int most = 0; ///< none in a closed set, which has no such form
};

/// Finds the values of an enumeration by their texts.
class ZORV_EXPORT EnumReader {
public:
    EnumReader(char const* enumName, EnumRows rows, OpenDigits digits);
    EnumReader(EnumReader const&) = delete;
    EnumReader& operator=(EnumReader const&) = delete;
    ~EnumReader();

    /// The value of a text; an InvalidEnumError where the enumeration does not have it.
    int read(std::string_view text) const;

    /// As read(), without an error: false where the enumeration does not have the text.
    bool find(std::string_view text, int& value) const;

private:
    struct Index;

    char const* enumName_;
    OpenDigits digits_;
    std::unique_ptr<Index const> index_;
};

/// One text for each value. An open set also writes a number that has no text.
class ZORV_EXPORT EnumTexts {
public:
    using Reader = EnumReader;

    constexpr EnumTexts(char const* enumName, EnumRows rows, OpenDigits digits)
        : enumName_(enumName), rows_(rows), digits_(digits) {}

    constexpr EnumRows rows() const noexcept { return rows_; }

    /// The value's text; empty where it has none.
    std::string_view find(int value) const {
        auto const place = static_cast<unsigned int>(value) - static_cast<unsigned int>(rows_.first->value);
        if (place >= rows_.places.size) { return search(value); }
        auto const row = rows_.places.first[place];
        return row == EnumPlaces::none ? std::string_view() : rows_.first[row].text;
    }

    /// Appends the value's text; false, and nothing appended, where the enumeration does not have the value.
    bool append(std::string& out, int value) const;

    /// Throws the InvalidEnumError about a value for which `append` said false.
    [[noreturn]] void refuse(int value) const;

    /// Writes the value's text as a JSON string; an InvalidEnumError where the enumeration does not have the value.
    void write(Serializer& s, int value) const {
        auto const text = find(value);
        if (text.empty()) { return writeUnnamed(s, value); }
        s.writePlain(text);
    }

    Reader reader() const { return {enumName_, rows_, digits_}; }
    TypeDescriptor describe() const;

private:
    std::string_view search(int value) const;
    void writeUnnamed(Serializer& s, int value) const;

    char const* enumName_;
    EnumRows rows_;
    OpenDigits digits_;
};

namespace enums {

/// Writes a text as it is, whatever width the stream has: fill characters would not read back.
ZORV_EXPORT void put(std::ostream& os, std::string_view text);

/// Reads the next word as a whole, whatever width the stream has.
ZORV_EXPORT std::string readWord(std::istream& is);

/// The first word of a text, as a stream would read it.
ZORV_EXPORT std::string_view firstWord(std::string_view text);

/// Writes a value; what has been written before an error stays.
template <class Texts> std::ostream& write(std::ostream& os, Texts const& texts, int value) {
    std::string text;
    bool const isKnown = texts.append(text, value);
    put(os, text);
    if (!isKnown) { texts.refuse(value); }
    return os;
}

} // namespace enums

} // namespace zorv
