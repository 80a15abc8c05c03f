// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvcrypto/base64Decode.h"
#include "platform/libzorvcrypto/base64Encode.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zorv::crypto {
namespace {

namespace errc = boost::system::errc;

std::string encode(std::string const& bytes, bool lines = false) {
    boost::system::error_code error;
    auto text = base64Encode(reinterpret_cast<unsigned char const*>(bytes.data()), bytes.size(), lines, error);
    EXPECT_FALSE(error) << error;
    return text;
}

std::string decode(std::string const& text) {
    boost::system::error_code error;
    auto const result = base64Decode(text.data(), text.size(), error);
    EXPECT_FALSE(error) << error;
    EXPECT_FALSE(!result);
    return std::string(result.toUChar(), result.toUChar() + result.size());
}

::testing::AssertionResult isRefused(std::string const& text) {
    boost::system::error_code error;
    auto const result = base64Decode(text.data(), text.size(), error);
    if (error == errc::illegal_byte_sequence && !result && result.size() == 0) { return ::testing::AssertionSuccess(); }
    return ::testing::AssertionFailure() << '"' << text << "\" gives " << result.size() << " bytes, " << error;
}

/// Bytes without a pattern, which could hide an error at the end of a block.
std::string noise(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 2463534242U;
    for (auto& byte : bytes) {
        state ^= state << 13U;
        state ^= state >> 17U;
        state ^= state << 5U;
        byte = static_cast<char>(state & 0xFFU);
    }
    return bytes;
}

TEST(Base64, EncodesTheKnownTexts) {
    EXPECT_EQ(encode("f"), "Zg==");
    EXPECT_EQ(encode("fo"), "Zm8=");
    EXPECT_EQ(encode("foo"), "Zm9v");
    EXPECT_EQ(encode("foob"), "Zm9vYg==");
    EXPECT_EQ(encode("fooba"), "Zm9vYmE=");
    EXPECT_EQ(encode("foobar"), "Zm9vYmFy");
}

TEST(Base64, DecodesTheKnownTexts) {
    EXPECT_EQ(decode("Zg=="), "f");
    EXPECT_EQ(decode("Zm8="), "fo");
    EXPECT_EQ(decode("Zm9v"), "foo");
    EXPECT_EQ(decode("Zm9vYg=="), "foob");
    EXPECT_EQ(decode("Zm9vYmE="), "fooba");
    EXPECT_EQ(decode("Zm9vYmFy"), "foobar");
}

TEST(Base64, UsesPlusAndSlashForTheLastTwoDigits) {
    EXPECT_EQ(encode("\xfb\xff\xbf"), "+/+/");
    EXPECT_EQ(decode("+/+/"), "\xfb\xff\xbf");
    EXPECT_TRUE(isRefused("-_-_"));
}

TEST(Base64, EncodesNothingFromANullPointerToTheEmptyText) {
    boost::system::error_code error = errc::make_error_code(errc::io_error);
    EXPECT_EQ(base64Encode(nullptr, 0, false, error), "");
    EXPECT_FALSE(error);
}

TEST(Base64, DecodesTheEmptyTextToAnEmptyResultWithoutAnError) {
    boost::system::error_code error = errc::make_error_code(errc::io_error);
    auto const result = base64Decode(nullptr, 0, error);
    EXPECT_FALSE(error);
    EXPECT_FALSE(!result);
    EXPECT_EQ(result.size(), 0U);
}

TEST(Base64, DefaultResultIsAFailure) { EXPECT_TRUE(!CryptoResult()); }

TEST(Base64, EncodesLongTextsWithoutLineFeeds) { EXPECT_EQ(encode(noise(100'000)).find('\n'), std::string::npos); }

TEST(Base64, BreaksLinesAfter64CharactersWhenAsked) {
    EXPECT_EQ(encode(std::string(48, '\0'), true), std::string(64, 'A') + "\n");
    EXPECT_EQ(encode(std::string(49, '\0'), true), std::string(64, 'A') + "\nAA==\n");
    EXPECT_EQ(encode("", true), "");
}

TEST(Base64, RefusesBrokenLines) { EXPECT_TRUE(isRefused(encode(std::string(49, '\0'), true))); }

TEST(Base64, RoundTripsEveryLength) {
    auto const bytes = noise(600);
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        auto const part = bytes.substr(0, size);
        ASSERT_EQ(decode(encode(part)), part) << size;
    }
}

TEST(Base64, RoundTripsLengthsAroundItsBlockSizes) {
    for (std::size_t const block : {std::size_t(12'288), std::size_t(2 * 12'288), std::size_t(3U << 20U)}) {
        for (auto const size : {block - 1, block, block + 1, block + 2}) {
            auto const bytes = noise(size);
            ASSERT_TRUE(decode(encode(bytes)) == bytes) << size;
        }
    }
}

TEST(Base64, RefusesEveryCharacterOutsideTheAlphabetInEveryPlace) {
    std::string const alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string const text = "Zm9vYmFy";
    for (int c = 0; c < 256; ++c) {
        if (alphabet.find(static_cast<char>(c)) != std::string::npos) { continue; }
        for (std::size_t at = 0; at < text.size(); ++at) {
            auto changed = text;
            changed[at] = static_cast<char>(c);
            // The one place where '=' is padding; the bits in front of it are checked elsewhere.
            if (c == '=' && at == text.size() - 1) { continue; }
            ASSERT_TRUE(isRefused(changed)) << "character " << c << " at " << at;
        }
    }
}

TEST(Base64, RefusesWhiteSpaceAroundTheText) {
    EXPECT_TRUE(isRefused(" Zm9v"));
    EXPECT_TRUE(isRefused("Zm9v\n"));
    EXPECT_TRUE(isRefused("    Zm9v"));
    EXPECT_TRUE(isRefused("Zm9v    "));
    EXPECT_TRUE(isRefused("\n\n\n\n"));
}

TEST(Base64, RefusesALengthThatIsNotAMultipleOfFour) {
    EXPECT_TRUE(isRefused("Z"));
    EXPECT_TRUE(isRefused("Zm"));
    EXPECT_TRUE(isRefused("Zm9"));
    EXPECT_TRUE(isRefused("Zm9vY"));
    EXPECT_TRUE(isRefused("Zm9vYg"));
    EXPECT_TRUE(isRefused("Zm9vYmE"));
}

TEST(Base64, RefusesPaddingThatIsMisplaced) {
    EXPECT_TRUE(isRefused("===="));
    EXPECT_TRUE(isRefused("Z==="));
    EXPECT_TRUE(isRefused("Zg=a"));
    EXPECT_TRUE(isRefused("=Zg="));
    EXPECT_TRUE(isRefused("Zg==Zg=="));
    EXPECT_TRUE(isRefused("Zm8=Zm9v"));
}

TEST(Base64, RefusesPaddingBetweenItsBlocks) {
    auto text = encode(noise(2 * 12'288));
    text.replace(16'380, 4, "Zg==");
    EXPECT_TRUE(isRefused(text));
}

TEST(Base64, RefusesBitsThatBelongToNoByte) {
    EXPECT_TRUE(isRefused("Zh==")); // the byte of "Zg==" and one bit
    EXPECT_TRUE(isRefused("Zm9=")); // the bytes of "Zm8=" and one bit
}

TEST(Base64, RefusesANullPointerWithALength) {
    boost::system::error_code error;
    EXPECT_EQ(base64Encode(nullptr, 1, false, error), "");
    EXPECT_EQ(error, errc::invalid_argument);
    EXPECT_TRUE(!base64Decode(nullptr, 4, error));
    EXPECT_EQ(error, errc::invalid_argument);
}

TEST(Base64, RefusesALengthBeyondTheLongestString) {
    unsigned char const byte = 0; // is not read
    for (bool const lines : {false, true}) {
        boost::system::error_code error;
        EXPECT_EQ(base64Encode(&byte, SIZE_MAX, lines, error), "");
        EXPECT_EQ(error, errc::value_too_large);
    }
}

} // namespace
} // namespace zorv::crypto
