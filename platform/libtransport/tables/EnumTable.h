// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/format8Bits.h"
#include "platform/libtransport/tables/EnumDeclaration.h"
#include "platform/libtransport/tables/EnumTexts.h"
#include "platform/libtransport/tables/Enumerators.h"
#include "platform/libtransport/tables/TypeDescriptor.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

// The values and texts of an enumeration, derived from its declaration.
//
// The header declares the operations beside the enumeration, the source defines them from a table:
//
//     namespace AddRemoveOp {
//     enum Enum : int { invalid, add, remove };
//     ZORV_ENUM_DECLARE(QUILLET_EXPORT)
//     } // namespace AddRemoveOp
//
//     namespace AddRemoveOp {
//     ZORV_ENUM_DEFINE(enumTable<Enum>())
//     } // namespace AddRemoveOp
//
// A value's text is its identifier; `with` gives another one to a value whose text cannot be an identifier. `open` makes
// an open set, whose other numbers are hex digits. FlagTable.h has the tables of flag sets.
//
// Enumerators are found among the bytes. One beyond them is named: `enumTable<Enum, large, larger>()`.

namespace zorv {

namespace enums {

/// What an enumeration's values usually are: a byte, or -1. A larger one has to be named.
template <int... beyond> struct BytesAnd {
    static constexpr int bytes = 257;
    static constexpr int size = bytes + sizeof...(beyond);

    static constexpr int at(int place) {
        constexpr std::array<int, sizeof...(beyond) + 1> others = {beyond...};
        return place < bytes ? place - 1 : others[static_cast<std::size_t>(place - bytes)];
    }
};

template <class Enum> constexpr auto copyName() {
    constexpr auto name = identifiers::nameOfEnum<Enum>();
    identifiers::Text<name.size()> text;
    text.append(name);
    return text;
}

/// What an enumeration is called in errors and documents.
template <class Enum> inline constexpr auto name = copyName<Enum>();

/// Whether a text stands in JSON as it is: texts are written without a look at their characters.
constexpr bool isPlain(std::string_view text) {
    for (char const c : text) {
        if (c < ' ' || c > '~' || c == '"' || c == '\\') { return false; }
    }
    return true;
}

template <std::size_t count> constexpr bool areOrderly(std::array<EnumRow, count> const& rows) {
    for (std::size_t i = 0; i < count; ++i) {
        if (!isPlain(rows[i].text) || rows[i].text.empty() || (i > 0 && rows[i - 1].value >= rows[i].value)) {
            return false;
        }
        for (std::size_t j = 0; j < i; ++j) {
            if (rows[i].text == rows[j].text) { return false; }
        }
    }
    return count > 0;
}

/// How far the lowest values lie apart that are found by their places: as far as bytes do.
template <std::size_t count> constexpr std::size_t placesOf(std::array<EnumRow, count> const& rows) {
    std::size_t size = 0;
    for (auto const& row : rows) {
        if (row.value - rows[0].value < BytesAnd<>::bytes && row.value >= rows[0].value) {
            size = static_cast<std::size_t>(row.value - rows[0].value) + 1;
        }
    }
    return count < EnumPlaces::none ? size : 0;
}

template <std::size_t size, std::size_t count>
constexpr std::array<std::uint8_t, size> makePlaces(std::array<EnumRow, count> const& rows) {
    std::array<std::uint8_t, size> places = {};
    for (auto& place : places) { place = EnumPlaces::none; }
    for (std::size_t i = 0; i < count; ++i) {
        auto const place = static_cast<std::size_t>(rows[i].value - rows[0].value);
        if (place < size) { places[place] = static_cast<std::uint8_t>(i); }
    }
    return places;
}

} // namespace enums

/// One text for each declared value.
template <class Enum, Enum... beyond> class EnumTable {
    static constexpr auto const& declared = Enumerators<Enum, enums::BytesAnd<beyond...>>::rows;
    static constexpr auto places = enums::makePlaces<enums::placesOf(declared)>(declared);

public:
    constexpr EnumTable() = default;

    /// The table of an enumeration that errors and documents call something else.
    constexpr EnumTable named(char const* name) const {
        auto table = *this;
        table.name_ = name;
        return table;
    }

    /// The table with a text that is not the identifier.
    constexpr EnumTable with(Enum value, std::string_view text) const {
        auto table = *this;
        std::size_t row = 0;
        while (table.rows_[row].value != value) { ++row; } // past the end, and no constant, where it is not declared
        table.rows_[row].text = text;
        return table;
    }

    /// The table of an open set: a number without a text is written with at least so many digits.
    constexpr EnumTable open(unsigned int leastDigits, unsigned int mostDigits) const {
        auto table = *this;
        table.digits_ = {leastDigits, mostDigits};
        return table;
    }
    constexpr EnumTable open(unsigned int digits) const { return open(digits, digits); }

    constexpr bool isOrderly() const { return enums::areOrderly(rows_); }

    /// The texts, for a table that stays where it is.
    constexpr EnumTexts texts() const {
        return {name_, {rows_.data(), rows_.size(), {places.data(), places.size()}}, digits_};
    }

private:
    char const* name_ = enums::name<Enum>.data();
    std::decay_t<decltype(declared)> rows_ = declared;
    OpenDigits digits_;
};

template <class Enum, Enum... beyond> constexpr EnumTable<Enum, beyond...> enumTable() { return {}; }

} // namespace zorv

/// Defines the declared operations from a table, which is called `table` from then on, and its texts `texts`.
#define ZORV_ENUM_DEFINE(...)                                                                                          \
    namespace {                                                                                                        \
    constexpr auto table = __VA_ARGS__;                                                                                \
    constexpr auto texts = table.texts();                                                                              \
    auto const& reader() {                                                                                             \
        static auto const reader = texts.reader();                                                                     \
        return reader;                                                                                                 \
    }                                                                                                                  \
    }                                                                                                                  \
    static_assert(table.isOrderly(), "an enumeration without values, a text twice, or values out of order");           \
    std::ostream& operator<<(std::ostream& os, Enum value) { return ::zorv::enums::write(os, texts, value); }          \
    std::istream& operator>>(std::istream& is, Enum& value) {                                                          \
        parse(::zorv::enums::readWord(is), value);                                                                     \
        return is;                                                                                                     \
    }                                                                                                                  \
    void appendText(std::string& out, Enum value) {                                                                    \
        if (!texts.append(out, value)) { texts.refuse(value); }                                                        \
    }                                                                                                                  \
    void write(::zorv::Serializer& s, Enum value) { texts.write(s, value); }                                           \
    std::string toString(Enum value) {                                                                                 \
        std::string text;                                                                                              \
        appendText(text, value);                                                                                       \
        return text;                                                                                                   \
    }                                                                                                                  \
    void parse(std::string_view text, Enum& value) {                                                                   \
        value = static_cast<Enum>(reader().read(::zorv::enums::firstWord(text)));                                      \
    }                                                                                                                  \
    bool tryParse(std::string_view text, Enum& value) {                                                                \
        int number = 0;                                                                                                \
        if (!reader().find(text, number)) { return false; }                                                            \
        value = static_cast<Enum>(number);                                                                             \
        return true;                                                                                                   \
    }                                                                                                                  \
    Enum toEnum(std::string const& text) {                                                                             \
        Enum value;                                                                                                    \
        parse(text, value);                                                                                            \
        return value;                                                                                                  \
    }                                                                                                                  \
    ::zorv::TypeDescriptor describe(Enum) { return texts.describe(); }

/// Defines the declared `toHex`.
#define ZORV_ENUM_DEFINE_HEX                                                                                           \
    std::string toHex(Enum value) { return ::zorv::format8Bits(static_cast<unsigned char>(value), false); }
