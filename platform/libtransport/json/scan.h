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
    // Most often there is none, which one comparison tells.
    while (static_cast<unsigned char>(*at) <= ' ' && isBlank(*at)) { ++at; }
    return at;
}

/// Eight characters at a time, by arithmetic that every processor has.
struct WordBlock {
    static constexpr std::size_t size = 8;
    using Bits = std::uint64_t; ///< a bit for each character that was looked for

    explicit WordBlock(char const* at) noexcept { std::memcpy(&word_, at, size); }

    Bits notPlain() const noexcept { return (word_ & highBits) | below(word_, ' ') | equalTo('"') | equalTo('\\'); }
    Bits quotesAndEscapes() const noexcept { return equalTo('"') | equalTo('\\'); }

    /// The first character whose bit is set; where bytes come the other way round, one that is not behind it, since a
    /// borrow may have marked characters before it.
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    static constexpr bool isExact = true;
    static std::size_t firstOf(Bits bits) noexcept { return static_cast<std::size_t>(__builtin_ctzll(bits)) / 8; }
#else
    static constexpr bool isExact = false;
    static std::size_t firstOf(Bits) noexcept { return 0; }
#endif

private:
    static constexpr std::uint64_t eachByte = 0x0101010101010101U;
    static constexpr std::uint64_t highBits = 0x8080808080808080U;

    /// The high bit of the first byte below `limit`, and of none before it; bytes behind it may have it wrongly.
    static Bits below(std::uint64_t word, std::uint64_t limit) noexcept {
        return (word - eachByte * limit) & ~word & highBits;
    }
    Bits equalTo(char c) const noexcept { return below(word_ ^ (eachByte * static_cast<std::uint64_t>(c)), 1); }

    std::uint64_t word_ = 0;
};

#if defined(__SSE2__)
/// Sixteen characters at a time.
struct SseBlock {
    static constexpr std::size_t size = 16;
    using Bits = unsigned int;

    explicit SseBlock(char const* at) noexcept : block_(_mm_loadu_si128(reinterpret_cast<__m128i const*>(at))) {}

    Bits notPlain() const noexcept {
        auto const others = _mm_cmplt_epi8(block_, _mm_set1_epi8(' ')); // signed: what is not ASCII is negative
        return bitsOf(_mm_or_si128(_mm_or_si128(equalTo('"'), equalTo('\\')), others));
    }
    Bits quotesAndEscapes() const noexcept { return bitsOf(_mm_or_si128(equalTo('"'), equalTo('\\'))); }

    static constexpr bool isExact = true;
    static std::size_t firstOf(Bits bits) noexcept { return static_cast<std::size_t>(__builtin_ctz(bits)); }

private:
    __m128i equalTo(char c) const noexcept { return _mm_cmpeq_epi8(block_, _mm_set1_epi8(c)); }
    static Bits bitsOf(__m128i mask) noexcept { return static_cast<Bits>(_mm_movemask_epi8(mask)); }

    __m128i block_;
};

using Block = SseBlock;
#else
using Block = WordBlock;
#endif

/// Steps over plain characters; `end` where all are.
template <class Block = scan::Block> char const* skipPlain(char const* at, char const* end) noexcept {
    for (; static_cast<std::size_t>(end - at) >= Block::size; at += Block::size) {
        auto const bits = Block(at).notPlain();
        if (bits != 0) {
            at += Block::firstOf(bits);
            if constexpr (Block::isExact) { return at; }
            break;
        }
    }
    while (at != end && isPlain(*at)) { ++at; }
    return at;
}

/// The first quote or backslash; `end` where there is none.
template <class Block = scan::Block> char const* findQuoteOrEscape(char const* at, char const* end) noexcept {
    for (; static_cast<std::size_t>(end - at) >= Block::size; at += Block::size) {
        auto const bits = Block(at).quotesAndEscapes();
        if (bits != 0) {
            at += Block::firstOf(bits);
            if constexpr (Block::isExact) { return at; }
            break;
        }
    }
    while (at != end && *at != '"' && *at != '\\') { ++at; }
    return at;
}

} // namespace zorv::scan
