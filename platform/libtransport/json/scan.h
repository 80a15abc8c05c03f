// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// How the reader and the writer step over the characters of JSON texts.

namespace zorv::scan {

inline bool isBlank(char c) noexcept { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
inline bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }
inline bool isControl(char c) noexcept { return static_cast<unsigned char>(c) < 0x20U; }
inline bool isAscii(char c) noexcept { return static_cast<unsigned char>(c) < 0x80U; }

/// Whether a character stands in a string as itself and needs no second look.
inline bool isPlain(char c) noexcept { return isAscii(c) && !isControl(c) && c != '"' && c != '\\'; }

/// The first character that is not blank; the text has to end with one that is not, such as a string's NUL.
inline char const* skipBlanks(char const* at) noexcept {
    while (isBlank(*at)) { ++at; }
    return at;
}

/// Several characters at a time: as many as a register holds.
#if defined(__SSE2__)
constexpr std::size_t blockSize = 16;
using Block = __m128i;

inline Block loadBlock(char const* at) noexcept { return _mm_loadu_si128(reinterpret_cast<__m128i const*>(at)); }

/// One bit for each character that is not plain, the first character's lowest.
inline unsigned int notPlain(Block block) noexcept {
    auto const quotes = _mm_cmpeq_epi8(block, _mm_set1_epi8('"'));
    auto const escapes = _mm_cmpeq_epi8(block, _mm_set1_epi8('\\'));
    auto const others = _mm_cmplt_epi8(block, _mm_set1_epi8(0x20)); // signed: what is not ASCII is negative
    return static_cast<unsigned int>(_mm_movemask_epi8(_mm_or_si128(_mm_or_si128(quotes, escapes), others)));
}

/// One bit for each quote or backslash.
inline unsigned int quotesAndEscapes(Block block) noexcept {
    auto const quotes = _mm_cmpeq_epi8(block, _mm_set1_epi8('"'));
    auto const escapes = _mm_cmpeq_epi8(block, _mm_set1_epi8('\\'));
    return static_cast<unsigned int>(_mm_movemask_epi8(_mm_or_si128(quotes, escapes)));
}

inline std::size_t firstOf(unsigned int bits) noexcept { return static_cast<std::size_t>(__builtin_ctz(bits)); }
#else
constexpr std::size_t blockSize = 8;
using Block = std::uint64_t;

inline Block loadBlock(char const* at) noexcept {
    Block block = 0;
    std::memcpy(&block, at, sizeof block);
    return block;
}

constexpr Block eachByte = 0x0101010101010101U;
constexpr Block highBits = 0x8080808080808080U;

/// The high bit of the first byte below `limit`, and of none before it; bytes behind it may have it wrongly.
inline Block below(Block block, Block limit) noexcept { return (block - eachByte * limit) & ~block & highBits; }
inline Block equalTo(Block block, char c) noexcept { return below(block ^ (eachByte * static_cast<Block>(c)), 1); }

inline Block notPlain(Block block) noexcept {
    return (block & highBits) | below(block, 0x20) | equalTo(block, '"') | equalTo(block, '\\');
}

inline Block quotesAndEscapes(Block block) noexcept { return equalTo(block, '"') | equalTo(block, '\\'); }

inline std::size_t firstOf(Block bits) noexcept {
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return static_cast<std::size_t>(__builtin_ctzll(bits)) / 8;
#else
    // The first byte is the highest here, and a borrow may have marked bytes before it: look again, byte by byte.
    static_cast<void>(bits);
    return 0;
#endif
}
#endif

/// Steps over plain characters; `end` where all are.
inline char const* skipPlain(char const* at, char const* end) noexcept {
    for (; static_cast<std::size_t>(end - at) >= blockSize; at += blockSize) {
        auto const bits = notPlain(loadBlock(at));
        if (bits != 0) {
            at += firstOf(bits);
            break;
        }
    }
    while (at != end && isPlain(*at)) { ++at; }
    return at;
}

/// The first quote or backslash; `end` where there is none.
inline char const* findQuoteOrEscape(char const* at, char const* end) noexcept {
    for (; static_cast<std::size_t>(end - at) >= blockSize; at += blockSize) {
        auto const bits = quotesAndEscapes(loadBlock(at));
        if (bits != 0) {
            at += firstOf(bits);
            break;
        }
    }
    while (at != end && *at != '"' && *at != '\\') { ++at; }
    return at;
}

} // namespace zorv::scan
