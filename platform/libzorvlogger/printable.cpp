// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvlogger/printable.h"

#include <boost/locale/utf.hpp>

namespace zorv {

namespace {

using CodePoint = boost::locale::utf::code_point;

/// Steps over one character of UTF-8, or over one byte, with `illegal`, if the bytes are not UTF-8.
CodePoint nextCodePoint(char const*& at, char const* end) {
    char const* const start = at;
    auto const codePoint = boost::locale::utf::utf_traits<char>::decode(at, end);
    if (codePoint != boost::locale::utf::illegal && codePoint != boost::locale::utf::incomplete) { return codePoint; }
    at = start + 1;
    return boost::locale::utf::illegal;
}

bool isControl(CodePoint c) noexcept { return c < 0x20U || (c >= 0x7FU && c < 0xA0U); }

bool isPrintable(CodePoint c) noexcept { return c != boost::locale::utf::illegal && !isControl(c); }

void appendHex(std::string& text, char c) {
    static constexpr char const* digits = "0123456789abcdef";
    auto const byte = static_cast<unsigned char>(c);
    text += digits[byte >> 4U];
    text += digits[byte & 0xFU];
}

/// Copies the text, each character as `show(result, codePoint, at, next)` appends it.
template <class Show> std::string copyShown(std::string_view text, Show const& show) {
    std::string result;
    result.reserve(text.size());
    char const* const end = text.data() + text.size();
    for (char const* at = text.data(); at != end;) {
        char const* next = at;
        auto const codePoint = nextCodePoint(next, end);
        show(result, codePoint, at, next);
        at = next;
    }
    return result;
}

void appendPrintable(std::string& result, CodePoint codePoint, char const* at, char const* next) {
    if (isPrintable(codePoint)) {
        result.append(at, next);
        return;
    }
    for (; at != next; ++at) {
        result += "\\x";
        appendHex(result, *at);
    }
}

} // namespace

std::string printable(std::string_view text) { return copyShown(text, appendPrintable); }

std::string printableLines(std::string_view text) {
    char const* const end = text.data() + text.size();
    return copyShown(text, [end](std::string& result, CodePoint codePoint, char const* at, char const* next) {
        if (codePoint == '\n' && (next == end || *next == ' ')) {
            result += '\n';
        } else {
            appendPrintable(result, codePoint, at, next);
        }
    });
}

std::string printableJson(std::string_view json) {
    return copyShown(json, [](std::string& result, CodePoint codePoint, char const* at, char const* next) {
        if (codePoint < 0x7FU || !isControl(codePoint)) {
            result.append(at, next);
        } else {
            result += "\\u00";
            appendHex(result, next[-1]); // of DEL and of C1 alike, the last byte is the code point
        }
    });
}

} // namespace zorv
