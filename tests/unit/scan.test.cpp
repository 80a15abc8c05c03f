// SPDX-License-Identifier: Apache-2.0
// The characters of a text are looked at many at a time. Whatever does so is held against the plainest loop, for every
// character in every place of a block, on every processor that the tests run on.

#include "platform/libtransport/json/scan.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <type_traits>

namespace zorv::scan {
namespace {

char const* skipPlainSimply(char const* at, char const* end) {
    while (at != end && static_cast<unsigned char>(*at) >= 0x20 && static_cast<unsigned char>(*at) < 0x80 &&
           *at != '"' && *at != '\\') {
        ++at;
    }
    return at;
}

char const* findQuoteOrEscapeSimply(char const* at, char const* end) {
    while (at != end && *at != '"' && *at != '\\') { ++at; }
    return at;
}

template <class Block> class Scan : public testing::Test {
public:
    /// Whether both ways of looking say the same of a text.
    static testing::AssertionResult agrees(std::string const& text) {
        auto const* const begin = text.data();
        auto const* const end = begin + text.size();
        if (skipPlain<Block>(begin, end) != skipPlainSimply(begin, end)) {
            return testing::AssertionFailure() << "skipPlain: " << testing::PrintToString(text);
        }
        if (findQuoteOrEscape<Block>(begin, end) != findQuoteOrEscapeSimply(begin, end)) {
            return testing::AssertionFailure() << "findQuoteOrEscape: " << testing::PrintToString(text);
        }
        return testing::AssertionSuccess();
    }
};

#if defined(__SSE2__)
using Blocks = testing::Types<WordBlock, SseBlock>;
#else
using Blocks = testing::Types<WordBlock>;
#endif
struct BlockName {
    template <class Block> static std::string GetName(int) {
        return std::is_same_v<Block, WordBlock> ? "WordBlock" : "SseBlock";
    }
};

TYPED_TEST_SUITE(Scan, Blocks, BlockName);

TYPED_TEST(Scan, FindsEveryCharacterInEveryPlaceOfATextOfAnyLength) {
    for (std::size_t length = 0; length <= 40; ++length) {
        EXPECT_TRUE(this->agrees(std::string(length, 'x')));
        for (std::size_t place = 0; place < length; ++place) {
            for (int c = 0; c < 256; ++c) {
                std::string text(length, 'x');
                text[place] = static_cast<char>(c);
                ASSERT_TRUE(this->agrees(text));
            }
        }
    }
}

TYPED_TEST(Scan, FindsTheFirstOfTwoCharacters) {
    // Neighbours in value as well as in place: a borrow runs from one byte of a word to the next.
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            std::string text(24, '!');
            text[9] = static_cast<char>(first);
            text[10] = static_cast<char>(second);
            ASSERT_TRUE(this->agrees(text));
        }
    }
}

TYPED_TEST(Scan, AgreesOnTextsOfAnyCharacters) {
    std::mt19937 random(20261121);
    for (int i = 0; i < 100000; ++i) {
        std::string text(random() % 50, ' ');
        // Mostly those about which something has to be decided.
        for (auto& c : text) {
            c = random() % 4 == 0 ? static_cast<char>(random() % 256) : "\x1f !\"#[\\]\x7f\x80x"[random() % 11];
        }
        ASSERT_TRUE(this->agrees(text));
    }
}

TYPED_TEST(Scan, LooksAtNothingBehindTheEnd) {
    std::string const text = std::string(20, 'x') + "\"";
    EXPECT_EQ(skipPlain<TypeParam>(text.data(), text.data() + 20), text.data() + 20);
    EXPECT_EQ(findQuoteOrEscape<TypeParam>(text.data(), text.data() + 20), text.data() + 20);
}

} // namespace
} // namespace zorv::scan
