#pragma once

#include "platform/libtransport/EnumDeclaration.h"
#include "platform/libtransport/StringToVector.h"
#include "platform/libtransport/TypeDescriptor.h"
#include "platform/libtransport/format8Bits.h"
#include "platform/libtransport/hexDigits.h"
#include "platform/libtransport/throwInvalidEnum.h"

#include <boost/unordered_map.hpp>

#include <array>
#include <charconv>
#include <cstddef>
#include <istream>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// The values and texts of an enumeration, named once.
//
// The header declares the operations beside the enumeration, the source derives them from a table:
//
//     namespace AddRemoveOp {
//     enum Enum : int { invalid, add, remove };
//     ZORV_ENUM_DECLARE(QUILLET_EXPORT)
//     } // namespace AddRemoveOp
//
//     namespace AddRemoveOp {
//     constexpr auto table = enumTable<Enum>("AddRemoveOp", {{invalid, "invalid"}, {add, "add"}, {remove, "remove"}});
//     ZORV_ENUM_DEFINE(table)
//     } // namespace AddRemoveOp
//
// A table that misses a declared value, gives a text twice or is out of order does not compile.

namespace zorv {

template <class Enum> struct EnumEntry {
    Enum value = {};
    std::string_view text;
};

template <class Enum, std::size_t count> using EnumEntries = std::array<EnumEntry<Enum>, count>;

namespace enums {

/// Whether the enumeration declares a name for the value; the compiler spells one without a name as a cast.
template <auto value> constexpr bool hasName() {
    std::string_view const signature = __PRETTY_FUNCTION__;
    std::string_view const label = "value = ";
    return signature[signature.find(label) + label.size()] != '(';
}

template <class Enum, std::size_t count> constexpr bool contains(EnumEntries<Enum, count> const& entries, int number) {
    for (auto const& entry : entries) {
        if (entry.value == number) { return true; }
    }
    return false;
}

template <class Enum, std::size_t count> constexpr bool isOrderly(EnumEntries<Enum, count> const& entries) {
    for (std::size_t i = 0; i < count; ++i) {
        if (entries[i].text.empty() || (i > 0 && entries[i - 1].value >= entries[i].value)) { return false; }
        for (std::size_t j = 0; j < i; ++j) {
            if (entries[i].text == entries[j].text) { return false; }
        }
    }
    return true;
}

/// Whether the table holds exactly the declared ones among the numbers from 0.
template <class Enum, std::size_t count, std::size_t... numbers>
constexpr bool holdsAllBelow(EnumEntries<Enum, count> const& entries, std::index_sequence<numbers...>) {
    return ((hasName<static_cast<Enum>(numbers)>() == contains(entries, static_cast<int>(numbers))) && ...);
}

/// Whether every declared single bit is one of the table's flags or lies in its field.
template <class Enum, std::size_t count, std::size_t... bits> constexpr bool
holdsAllBits(EnumEntries<Enum, count> const& entries, unsigned int fieldMask, std::index_sequence<bits...>) {
    return ((!hasName<static_cast<Enum>(1U << bits)>() || contains(entries, static_cast<int>(1U << bits)) ||
             ((1U << bits) & fieldMask) != 0) &&
            ...);
}

inline void put(std::ostream& os, std::string_view text) {
    os.width(0); // a width that was meant for the next item would add fill characters
    os.write(text.data(), static_cast<std::streamsize>(text.size()));
}

inline void put(std::string& out, std::string_view text) { out += text; }

/// The first word of a text, as a stream would read it.
inline std::string firstWord(std::string const& text) {
    char const* const blanks = " \t\n\v\f\r";
    auto const begin = text.find_first_not_of(blanks);
    if (begin == std::string::npos) { return {}; }
    return text.substr(begin, text.find_first_of(blanks, begin) - begin);
}

template <class Enum, std::size_t count> std::vector<EnumText> describeTexts(EnumEntries<Enum, count> const& entries) {
    std::vector<EnumText> texts;
    for (auto const& entry : entries) { texts.push_back({static_cast<int>(entry.value), std::string(entry.text)}); }
    return texts;
}

} // namespace enums

/// One text for each value. An open set also writes a number that has no text, as "0x" and its hex digits.
template <class Enum, std::size_t count> class EnumTable {
public:
    constexpr EnumTable(char const* name, EnumEntries<Enum, count> const& entries, unsigned int openDigits)
        : name_(name), entries_(entries), openDigits_(openDigits) {}

    static constexpr std::size_t provenBelow = 258; // larger sets are open: no one declares all their values

    constexpr bool isOrderly() const { return enums::isOrderly(entries_); }
    constexpr std::size_t numbersToProve() const {
        auto const next = static_cast<std::size_t>(entries_[count - 1].value) + 2;
        return next < provenBelow ? next : provenBelow;
    }
    template <std::size_t numbers> constexpr bool isComplete() const {
        return enums::holdsAllBelow(entries_, std::make_index_sequence<numbers>());
    }

    constexpr EnumEntries<Enum, count> const& entries() const noexcept { return entries_; }

    /// Writes to a stream or to the end of a string.
    template <class Out> void write(Out& out, Enum value) const {
        for (auto const& entry : entries_) {
            if (entry.value == value) {
                enums::put(out, entry.text);
                return;
            }
        }
        if (!fitsOpenDigits(value)) { throwInvalidEnum(name_, static_cast<int>(value)); }
        enums::put(out, "0x" + hexDigits(static_cast<unsigned int>(value), openDigits_));
    }

    Enum parse(std::string const& word) const {
        static auto const values = index();
        auto const found = values.find(word);
        if (found != values.end()) { return found->second; }
        unsigned int number = 0;
        auto const* const end = word.data() + word.size();
        bool const isHex = word.size() > 2 && word.size() <= 2 + openDigits_ && word.compare(0, 2, "0x") == 0 &&
                           std::from_chars(word.data() + 2, end, number, 16).ptr == end;
        if (!isHex) { throwInvalidEnum(name_, word); }
        return static_cast<Enum>(number);
    }

    TypeDescriptor describe() const {
        TypeDescriptor type;
        type.kind = openDigits_ > 0 ? TypeDescriptor::Kind::openSet : TypeDescriptor::Kind::enumeration;
        type.name = name_;
        type.texts = enums::describeTexts(entries_);
        return type;
    }

private:
    bool fitsOpenDigits(Enum value) const {
        return openDigits_ > 0 && static_cast<unsigned int>(value) >> (4U * openDigits_) == 0;
    }

    boost::unordered_map<std::string, Enum> index() const {
        boost::unordered_map<std::string, Enum> values;
        values.max_load_factor(1.0F);
        for (auto const& entry : entries_) { values.emplace(std::string(entry.text), entry.value); }
        return values;
    }

    char const* name_;
    EnumEntries<Enum, count> entries_;
    unsigned int openDigits_;
};

/// Stands for the field of a flag set that has only flags.
struct NoField {
    static constexpr unsigned int mask = 0;
    template <class Out> void write(Out&, std::string_view, unsigned int) const {}
    static constexpr std::array<EnumEntry<int>, 0> entries() { return {}; }
};

/// Some bits of a flag set that together hold one value of another enumeration, which is written last.
template <unsigned int fieldMask, class Table> struct FlagField {
    static constexpr unsigned int mask = fieldMask;
    Table table;

    template <class Out> void write(Out& out, std::string_view separator, unsigned int bits) const {
        enums::put(out, separator);
        using Enum = std::remove_const_t<decltype(table.entries()[0].value)>;
        table.write(out, static_cast<Enum>(bits & mask));
    }
    constexpr auto const& entries() const { return table.entries(); }
};

template <unsigned int fieldMask, class Table> constexpr FlagField<fieldMask, Table> flagField(Table const& table) {
    return {table};
}

/// A set of flags, written as their texts in the table's order, joined by "|".
///
/// A set without a flag is written as the text of the empty set. Bits that the table does not know are an error, after
/// the known ones have been written. On reading, each text may come once and only in that order; the text of the empty
/// set may come first and adds nothing.
template <class Enum, std::size_t count, class Field> class FlagTable {
public:
    constexpr FlagTable(char const* name, char const* nameOnReading, std::string_view emptyText,
                        EnumEntries<Enum, count> const& flags, Field const& field)
        : name_(name), nameOnReading_(nameOnReading), emptyText_(emptyText), flags_(flags), field_(field) {}

    constexpr bool isOrderly() const { return enums::isOrderly(flags_); }
    constexpr std::size_t numbersToProve() const { return 31; } // the bits of a positive int
    template <std::size_t bits> constexpr bool isComplete() const {
        return enums::holdsAllBits(flags_, Field::mask, std::make_index_sequence<bits>());
    }

    /// Writes to a stream or to the end of a string; what has been written before an error stays.
    template <class Out> void write(Out& out, Enum value) const {
        auto const bits = static_cast<unsigned int>(value);
        std::string_view separator;
        auto const writeItem = [&](std::string_view text) {
            enums::put(out, separator);
            enums::put(out, text);
            separator = "|";
        };
        unsigned int known = Field::mask;
        if ((bits & ~known) == 0) { writeItem(emptyText_); }
        for (auto const& flag : flags_) {
            known |= static_cast<unsigned int>(flag.value);
            if ((bits & static_cast<unsigned int>(flag.value)) != 0) { writeItem(flag.text); }
        }
        if ((bits & ~known) != 0) { throwInvalidEnum(name_, static_cast<int>(value)); }
        field_.write(out, separator, bits);
    }

    Enum parse(std::string const& word) const {
        std::vector<std::string> items;
        StringToVector(word, items, "|", true);
        auto item = items.cbegin();
        auto const take = [&](std::string_view text) {
            return item != items.cend() && *item == text && (++item, true);
        };
        unsigned int bits = 0;
        take(emptyText_);
        for (auto const& flag : flags_) {
            if (take(flag.text)) { bits |= static_cast<unsigned int>(flag.value); }
        }
        for (auto const& entry : field_.entries()) {
            if (take(entry.text)) { bits = (bits & ~Field::mask) | static_cast<unsigned int>(entry.value); }
        }
        if (item != items.cend()) { throwInvalidEnum(nameOnReading_, word); }
        return static_cast<Enum>(bits);
    }

    TypeDescriptor describe() const {
        TypeDescriptor type;
        type.kind = TypeDescriptor::Kind::flagSet;
        type.name = name_;
        type.texts = enums::describeTexts(flags_);
        type.texts.insert(type.texts.begin(), {0, std::string(emptyText_)});
        for (auto const& entry : field_.entries()) {
            type.texts.push_back({static_cast<int>(entry.value), std::string(entry.text)});
        }
        return type;
    }

private:
    char const* name_;
    char const* nameOnReading_;
    std::string_view emptyText_;
    EnumEntries<Enum, count> flags_;
    Field field_;
};

namespace enums {

template <class Enum, std::size_t count>
constexpr EnumEntries<Enum, count> toArray(EnumEntry<Enum> const (&entries)[count]) {
    EnumEntries<Enum, count> array{};
    for (std::size_t i = 0; i < count; ++i) { array[i] = entries[i]; }
    return array;
}

} // namespace enums

template <class Enum, std::size_t count>
constexpr EnumTable<Enum, count> enumTable(char const* name, EnumEntry<Enum> const (&entries)[count]) {
    return {name, enums::toArray(entries), 0};
}

/// An open set, whose values without a text are written with `digits` hex digits.
template <class Enum, std::size_t count> constexpr EnumTable<Enum, count>
openEnumTable(char const* name, unsigned int digits, EnumEntry<Enum> const (&entries)[count]) {
    return {name, enums::toArray(entries), digits};
}

template <class Enum, std::size_t count> constexpr FlagTable<Enum, count, NoField>
flagTable(char const* name, std::string_view emptyText, EnumEntry<Enum> const (&flags)[count]) {
    return {name, name, emptyText, enums::toArray(flags), NoField()};
}

/// A flag set with a field, and with a name of its own in the errors of reading.
template <class Enum, class Field, std::size_t count>
constexpr FlagTable<Enum, count, Field> flagTable(char const* name, char const* nameOnReading,
                                                  std::string_view emptyText, EnumEntry<Enum> const (&flags)[count],
                                                  Field const& field) {
    return {name, nameOnReading, emptyText, enums::toArray(flags), field};
}

} // namespace zorv

/// Defines the declared operations from `TABLE`, once that has been proven complete.
#define ZORV_ENUM_DEFINE(TABLE)                                                                                        \
    static_assert((TABLE).isOrderly(), "texts are missing or doubled, or values are out of order");                    \
    static_assert((TABLE).isComplete<(TABLE).numbersToProve()>(), "the table and the enumeration differ");             \
    std::ostream& operator<<(std::ostream& os, Enum value) {                                                           \
        (TABLE).write(os, value);                                                                                      \
        return os;                                                                                                     \
    }                                                                                                                  \
    std::istream& operator>>(std::istream& is, Enum& value) {                                                          \
        std::string word;                                                                                              \
        is >> word;                                                                                                    \
        value = (TABLE).parse(word);                                                                                   \
        return is;                                                                                                     \
    }                                                                                                                  \
    std::string toString(Enum value) {                                                                                 \
        std::string text;                                                                                              \
        (TABLE).write(text, value);                                                                                    \
        return text;                                                                                                   \
    }                                                                                                                  \
    Enum toEnum(std::string const& text) { return (TABLE).parse(::zorv::enums::firstWord(text)); }                     \
    ::zorv::TypeDescriptor describe(Enum) { return (TABLE).describe(); }

/// Defines the declared `toHex`.
#define ZORV_ENUM_DEFINE_HEX                                                                                           \
    std::string toHex(Enum value) { return ::zorv::format8Bits(static_cast<unsigned char>(value), false); }
