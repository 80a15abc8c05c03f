// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/Serializer.h"

#include "tests/support/errorOf.h"
#include "tests/support/json.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace zorv {
namespace {

template <class T> std::string written(T const& value) {
    Serializer s;
    s << value;
    return s.str();
}

std::string quoted(std::string const& text) { return written(text); }

template <class T> T readBack(T const& value) {
    Serializer s(written(value));
    T read{};
    s >> read;
    return read;
}

TEST(SerializerWriter, BeginsEmpty) { EXPECT_EQ(Serializer().str(), ""); }

TEST(SerializerWriter, WritesPunctuationWithoutWhiteSpace) {
    Serializer s;
    s << opencurly << noescape << "key" << colon << openbracket << 1 << comma << null << closebracket << closecurly;
    EXPECT_EQ(s.str(), R"({"key":[1,null]})");
}

TEST(SerializerWriter, NamesTheKeysOfAFrame) {
    EXPECT_EQ(Serializer::name, "__name__");
    EXPECT_EQ(Serializer::bases, "__bases__");
}

TEST(SerializerWriter, WritesBoolAsALiteral) {
    EXPECT_EQ(written(true), "true");
    EXPECT_EQ(written(false), "false");
}

TEST(SerializerWriter, WritesIntegersInDecimalUpToTheirLimits) {
    EXPECT_EQ(written(0), "0");
    EXPECT_EQ(written(std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(written(std::numeric_limits<int>::max()), "2147483647");
    EXPECT_EQ(written(std::numeric_limits<unsigned int>::max()), "4294967295");
    EXPECT_EQ(written(std::numeric_limits<unsigned short>::max()), "65535");
}

TEST(SerializerWriter, WritesAByteAsANumber) {
    EXPECT_EQ(written(static_cast<unsigned char>('A')), "65");
    EXPECT_EQ(written(static_cast<unsigned char>(255)), "255");
}

TEST(SerializerWriter, WritesADoubleInItsShortestForm) {
    EXPECT_EQ(written(0.0), "0");
    EXPECT_EQ(written(-0.0), "-0.0");
    EXPECT_EQ(written(1.0), "1");
    EXPECT_EQ(written(0.1), "0.1");
    EXPECT_EQ(written(-2.5), "-2.5");
    EXPECT_EQ(written(1e300), "1e+300");
    EXPECT_EQ(written(5e-324), "5e-324");
    EXPECT_EQ(written(std::numeric_limits<double>::max()), "1.7976931348623157e+308");
    EXPECT_EQ(written(0.1 + 0.2), "0.30000000000000004");
}

TEST(SerializerWriter, ADoubleReadsBackToTheSameValue) {
    for (double const value : {0.1, 1.0 / 3, 5e-324, 2.2250738585072009e-308, 2.2250738585072014e-308, 1e22, 1e23,
                               9007199254740993.0, 9223372036854775807.0, 1.8446744073709552e19, 1e300,
                               std::numeric_limits<double>::max(), -std::numeric_limits<double>::max()}) {
        EXPECT_EQ(readBack(value), value) << written(value);
    }
}

TEST(SerializerWriter, ANegativeZeroReadsBackNegative) {
    EXPECT_EQ(readBack(-0.0), 0.0);
    EXPECT_TRUE(std::signbit(readBack(-0.0)));
    EXPECT_FALSE(std::signbit(readBack(0.0)));
}

TEST(SerializerWriter, DoublesOfAnyBitPatternReadBackToTheSameValue) {
    std::mt19937_64 random(20260131);
    for (int i = 0; i < 5000; ++i) {
        auto const bits = static_cast<std::uint64_t>(random());
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) { continue; }
        EXPECT_EQ(readBack(value), value) << written(value);
    }
}

TEST(SerializerWriter, RefusesNumbersThatAreNotFiniteAndWritesNothing) {
    using Limits = std::numeric_limits<double>;
    for (double const value : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
        Serializer s;
        s << openbracket;
        EXPECT_EQ(errorOf([&] { s << value; }), "SerializerError: cannot write a number that is not finite");
        EXPECT_EQ(s.str(), "[");
    }
}

TEST(SerializerWriter, WritesAStringBetweenQuotes) {
    EXPECT_EQ(quoted(""), R"("")");
    EXPECT_EQ(quoted("text"), R"("text")");
    EXPECT_EQ(written("literal"), R"("literal")");
}

TEST(SerializerWriter, EscapesQuotesAndBackslashes) { EXPECT_EQ(quoted("a\"b\\c"), R"("a\"b\\c")"); }

TEST(SerializerWriter, EscapesControlCharacters) {
    EXPECT_EQ(quoted("\b\f\n\r\t"), R"("\b\f\n\r\t")");
    EXPECT_EQ(quoted(std::string("\0\x01\x1f", 3)), R"("\u0000\u0001\u001f")");
}

TEST(SerializerWriter, LeavesEverythingElseAsItIs) {
    EXPECT_EQ(quoted("/ ~\x7f"), "\"/ ~\x7f\"");
    EXPECT_EQ(quoted("gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x98\x80"),
              "\"gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x98\x80\"");
}

TEST(SerializerWriter, EveryCharacterReadsBackToTheSameByte) {
    std::string text;
    for (char c = 0; c < 127; ++c) { text += c; }
    EXPECT_EQ(readBack(text), text);
}

TEST(SerializerWriter, ABrokenTextIsRefusedAndLeavesNothingHalfWritten) {
    for (std::string const text :
         {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xE0\x80\x80", "\xE2\x82", "\xED\xA0\x80", "\xED\xBF\xBF",
          "\xF0\x80\x80\x80", "\xF4\x90\x80\x80", "\xF5", "\xFE", "\xFF", "good \n\xFF", "\xC3\xBC\xC3"}) {
        Serializer s;
        s << openbracket;
        EXPECT_EQ(errorOf([&] { s << text; }), "SerializerError: cannot write a text that is not UTF-8");
        EXPECT_EQ(s.str(), "[");
        s << "next" << closebracket;
        EXPECT_EQ(s.str(), R"(["next"])");
    }
}

TEST(SerializerWriter, NoescapeHoldsForTheNextStringOnly) {
    Serializer s;
    s << noescape << "key" << colon << "a\"b";
    EXPECT_EQ(s.str(), R"("key":"a\"b")");
}

} // namespace
} // namespace zorv
