// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

// The identifiers of the source, as texts at compile time.
//
// A compiler spells out the arguments of a template in the name that it gives to a function of it. Here that name is
// taken apart, so that a member's key and an enumerator's text are what stands in the source and cannot be misspelled.

namespace zorv::identifiers {

template <auto... values> constexpr std::string_view spellValues() { return __PRETTY_FUNCTION__; }
template <class T> constexpr std::string_view spellType() { return __PRETTY_FUNCTION__; }

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

constexpr bool isIdentifierCharacter(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

/// Where the arguments begin, with the bracket before a list of them passed over.
constexpr char const* argumentsOf(std::string_view spelling) {
    char const* const assignment = spelling.data() + spelling.find(" = ");
    char const* const first = assignment + 3;
    return *first == '{' || *first == '<' ? first + 1 : first;
}

/// The comma or the bracket that ends an argument; those within the argument's own brackets do not.
constexpr char const* endOfArgument(char const* at) {
    for (int depth = 0;; ++at) {
        switch (*at) {
        case '(':
        case '<':
        case '{': ++depth; break;
        case ')':
        case '>':
        case '}':
        case ']':
            if (depth == 0) { return at; }
            --depth;
            break;
        case ',':
        case ';':
            if (depth == 0) { return at; }
            break;
        default: break;
        }
    }
}

/// The last identifier of an argument: of "&zorv::PingMsg::latencyMs_" its name. Empty where the argument ends in a
/// number, as "(zorv::AddRemoveOp::Enum)7", which is how a value is spelled that has no name.
constexpr std::string_view lastIdentifier(char const* begin, char const* end) {
    char const* first = end;
    while (first != begin && isIdentifierCharacter(first[-1])) { --first; }
    bool const isNumber = first == end || isDigit(*first);
    return isNumber ? std::string_view() : std::string_view(first, static_cast<std::size_t>(end - first));
}

/// The name of one value or of a member pointer.
template <auto value> constexpr std::string_view nameOfValue() {
    char const* const argument = argumentsOf(spellValues<value>());
    return lastIdentifier(argument, endOfArgument(argument));
}

/// The name of an enumeration: that of its scope where it is called `Enum` itself.
template <class Enum> constexpr std::string_view nameOfEnum() {
    char const* const argument = argumentsOf(spellType<Enum>());
    char const* const end = endOfArgument(argument);
    auto const name = lastIdentifier(argument, end);
    if (name != "Enum" || end - argument < 6) { return name; }
    return lastIdentifier(argument, end - 6); // without "::Enum"
}

/// Characters with static storage, and a NUL after them; a view into a spelling would keep all of it in the program.
template <std::size_t size> struct Text {
    std::array<char, size + 1> characters = {};
    std::size_t length = 0;

    constexpr void append(std::string_view text) {
        for (char const c : text) { characters[length++] = c; }
    }
    constexpr char const* data() const { return characters.data(); }
    constexpr std::string_view view() const { return {characters.data(), length}; }
};

} // namespace zorv::identifiers
