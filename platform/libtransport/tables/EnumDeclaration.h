// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

namespace zorv {
class Serializer;
struct TypeDescriptor;
} // namespace zorv

// What `namespace XxxOp { enum Enum : int {...}; }` offers beside its values. EnumTable.h derives all of it from the
// enumeration's table.

/// Declares the operations of `Enum` in the namespace where it stands; a macro, because they have to stand there.
///
/// `operator<<`, `toString`, `appendText` and `write` write a value's text, `operator>>` reads one word, `toEnum` and `parse` take
/// the first word of a text. `tryParse` takes a whole text, and is false where it is another one. A number or a word that the enumeration does not have raises InvalidEnumError.
// NOLINTBEGIN(bugprone-macro-parentheses): an attribute cannot stand in parentheses
#define ZORV_ENUM_DECLARE(EXPORT)                                                                                      \
    EXPORT std::ostream& operator<<(std::ostream& os, Enum value);                                                     \
    EXPORT std::istream& operator>>(std::istream& is, Enum& value);                                                    \
    EXPORT std::string toString(Enum value);                                                                           \
    EXPORT Enum toEnum(std::string const& text);                                                                       \
    EXPORT void appendText(std::string& out, Enum value);                                                              \
    EXPORT void write(::zorv::Serializer& s, Enum value);                                                              \
    EXPORT void parse(std::string_view text, Enum& value);                                                             \
    EXPORT bool tryParse(std::string_view text, Enum& value);                                                          \
    EXPORT ::zorv::TypeDescriptor describe(Enum);
// NOLINTEND(bugprone-macro-parentheses)

/// Declares `toHex`: the two hex digits of the value's low byte.
#define ZORV_ENUM_DECLARE_HEX(EXPORT) EXPORT std::string toHex(Enum value);
