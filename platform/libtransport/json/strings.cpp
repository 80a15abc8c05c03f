// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/json/strings.h"

#include "platform/libtransport/hexDigits.h"
#include "platform/libtransport/json/scan.h"

#include <boost/locale/utf.hpp>

#include <charconv>
#include <iterator>

namespace zorv {

namespace {

using Utf8 = boost::locale::utf::utf_traits<char>;

constexpr int unitLength = 6; // of "\u00e9"

/// The UTF-16 unit of an escape such as "\u00e9"; -1 where there is none.
int escapedUnit(char const* at, char const* end) {
    if (end - at < unitLength || at[0] != '\\' || at[1] != 'u') { return -1; }
    unsigned int unit = 0;
    return std::from_chars(at + 2, at + unitLength, unit, 16).ptr == at + unitLength ? static_cast<int>(unit) : -1;
}

bool isHighSurrogate(int unit) noexcept { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(int unit) noexcept { return unit >= 0xDC00 && unit < 0xE000; }

char const* skipUnit(char const*& at, char const* end) {
    static constexpr char const* half = "half of a surrogate pair";
    auto const unit = escapedUnit(at, end);
    if (unit < 0) { return "bad escape"; }
    if (isLowSurrogate(unit)) { return half; }
    if (isHighSurrogate(unit)) {
        if (!isLowSurrogate(escapedUnit(at + unitLength, end))) { return half; }
        at += unitLength;
    }
    at += unitLength;
    return nullptr;
}

/// The character that an escape of two characters stands for; the reverse of shortEscape.
char unescaped(char c) noexcept {
    switch (c) {
    case 'b': return '\b';
    case 'f': return '\f';
    case 'n': return '\n';
    case 'r': return '\r';
    case 't': return '\t';
    default: return c; // quote, backslash and slash stand for themselves
    }
}

/// The second character of a short escape; NUL where a character has none.
char shortEscape(char c) noexcept {
    switch (c) {
    case '"': return '"';
    case '\\': return '\\';
    case '\b': return 'b';
    case '\f': return 'f';
    case '\n': return 'n';
    case '\r': return 'r';
    case '\t': return 't';
    default: return '\0';
    }
}

void appendEscaped(TextBuffer& json, char c) {
    json.append('\\');
    if (auto const letter = shortEscape(c); letter != '\0') {
        json.append(letter);
    } else {
        json.append('u');
        json.append(hexDigits(static_cast<unsigned char>(c), 4));
    }
}

/// Appends the character of the "\u" escape at `at`, which takes two of them where one is half of a surrogate pair.
char const* appendUnit(std::string& text, char const* at, char const* end) {
    auto codePoint = static_cast<boost::locale::utf::code_point>(escapedUnit(at, end));
    at += unitLength;
    if (isHighSurrogate(static_cast<int>(codePoint))) {
        auto const low = static_cast<boost::locale::utf::code_point>(escapedUnit(at, end));
        codePoint = 0x10000U + ((codePoint - 0xD800U) << 10U) + (low - 0xDC00U);
        at += unitLength;
    }
    Utf8::encode(codePoint, std::back_inserter(text));
    return at;
}

} // namespace

bool skipSequence(char const*& at, char const* end) {
    auto const codePoint = Utf8::decode(at, end);
    return codePoint != boost::locale::utf::illegal && codePoint != boost::locale::utf::incomplete;
}

char const* skipEscape(char const*& at, char const* end) {
    if (at + 1 == end) { return "bad escape"; }
    switch (at[1]) {
    case '"':
    case '\\':
    case '/':
    case 'b':
    case 'f':
    case 'n':
    case 'r':
    case 't': at += 2; return nullptr;
    case 'u': return skipUnit(at, end);
    default: return "bad escape";
    }
}

void appendUnescaped(std::string& text, std::string_view escaped) {
    char const* at = escaped.data();
    char const* const end = at + escaped.size();
    while (at != end) {
        char const* const escape = scan::findQuoteOrEscape(at, end);
        text.append(at, escape);
        if (escape == end) { return; }
        if (escape[1] == 'u') {
            at = appendUnit(text, escape, end);
        } else {
            text += unescaped(escape[1]);
            at = escape + 2;
        }
    }
}

bool appendQuoted(TextBuffer& json, std::string_view text) {
    auto const undo = json.size();
    char const* const end = text.data() + text.size();
    char const* copied = text.data(); // what is before it has been appended
    json.append('"');
    for (char const* at = copied; (at = scan::skipPlain(at, end)) != end;) {
        if (!scan::isAscii(*at)) {
            if (!skipSequence(at, end)) {
                json.all().resize(undo);
                return false;
            }
            continue;
        }
        json.append({copied, static_cast<std::size_t>(at - copied)});
        appendEscaped(json, *at);
        copied = ++at;
    }
    json.append({copied, static_cast<std::size_t>(end - copied)});
    json.append('"');
    return true;
}

} // namespace zorv
