#pragma once

#include <iosfwd>
#include <string>

namespace zorv {
struct TypeDescriptor;
} // namespace zorv

// What `namespace XxxOp { enum Enum : int {...}; }` offers beside its values. EnumTable.h derives all of it from the
// enumeration's table.

/// Declares the operations of `Enum` in the namespace where it stands; a macro, because they have to stand there.
///
/// `operator<<` and `toString` write a value's text, `operator>>` reads one word, `toEnum` takes the first word of a
/// text. A number or a word that the enumeration does not have raises InvalidEnumError.
#define ZORV_ENUM_DECLARE(EXPORT)                                                                                      \
    EXPORT std::ostream& operator<<(std::ostream& os, Enum value);                                                     \
    EXPORT std::istream& operator>>(std::istream& is, Enum& value);                                                    \
    EXPORT std::string toString(Enum value);                                                                           \
    EXPORT Enum toEnum(std::string const& text);                                                                       \
    EXPORT ::zorv::TypeDescriptor describe(Enum);                                                                      \
    inline void parse(std::string const& text, Enum& value) { value = toEnum(text); }

/// Declares `toHex`: the two hex digits of the value's low byte.
#define ZORV_ENUM_DECLARE_HEX(EXPORT) EXPORT std::string toHex(Enum value);
