// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/Serializer.h"

#include "platform/libtransport/SerialRegistrar.h"
#include "platform/libtransport/SerialValue.h"
#include "tests/support/errorOf.h"
#include "tests/support/golden.h"
#include "tests/support/json.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include "zwave/libquillet/ManageNvmMsg.h"
#include <gmock/gmock.h>

#include <gtest/gtest.h>

#include <boost/asio/ip/tcp.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace zorv {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

template <class T> T read(std::string const& text) {
    Serializer s(text);
    T value{};
    s >> value;
    return value;
}

template <class T> std::string errorToRead(std::string const& text) {
    return errorOf([&] { read<T>(text); });
}

std::string refused(std::string const& text) { return "SerializerError: " + text; }

std::string malformed(std::string const& text) {
    return errorOf([&] { Serializer s(text); });
}

// ---- values

TEST(SerializerReader, ReadsBool) {
    EXPECT_TRUE(read<bool>("true"));
    EXPECT_FALSE(read<bool>("false"));
}

TEST(SerializerReader, ReadsIntegersUpToTheirLimits) {
    EXPECT_EQ(read<int>("-2147483648"), -2147483647 - 1);
    EXPECT_EQ(read<int>("2147483647"), 2147483647);
    EXPECT_EQ(read<unsigned int>("4294967295"), 4294967295U);
    EXPECT_EQ(read<unsigned short>("65535"), 65535);
    EXPECT_EQ(read<unsigned char>("255"), 255);
    EXPECT_EQ(read<unsigned char>("0"), 0);
    EXPECT_EQ(read<int>("-0"), 0);
}

TEST(SerializerReader, RefusesAnIntThatIsOutOfRange) {
    EXPECT_EQ(errorToRead<int>("2147483648"), refused("expected int, got 2147483648"));
    EXPECT_EQ(errorToRead<int>("-2147483649"), refused("expected int, got -2147483649"));
    EXPECT_EQ(errorToRead<int>("18446744073709551615"), refused("expected int, got 18446744073709551615"));
    EXPECT_EQ(errorToRead<int>("18446744073709551616"), refused("expected int, got real"));
}

TEST(SerializerReader, RefusesAnUnsignedIntThatIsOutOfRange) {
    EXPECT_EQ(errorToRead<unsigned int>("4294967296"), refused("expected unsigned int, got 4294967296"));
    EXPECT_EQ(errorToRead<unsigned int>("-1"), refused("expected unsigned int, got -1"));
}

TEST(SerializerReader, RefusesAnUnsignedShortThatIsOutOfRange) {
    EXPECT_EQ(errorToRead<unsigned short>("65536"), refused("expected unsigned short, got 65536"));
    EXPECT_EQ(errorToRead<unsigned short>("-1"), refused("expected unsigned short, got -1"));
}

TEST(SerializerReader, RefusesAByteThatIsOutOfRange) {
    EXPECT_EQ(errorToRead<unsigned char>("256"), refused("expected unsigned byte, got 256"));
    EXPECT_EQ(errorToRead<unsigned char>("-1"), refused("expected unsigned byte, got -1"));
}

TEST(SerializerReader, ReadsEveryNumberAsADouble) {
    EXPECT_EQ(read<double>("1"), 1.0);
    EXPECT_EQ(read<double>("-2.5e-1"), -0.25);
    EXPECT_EQ(read<double>("1E5"), 100000.0);
    EXPECT_EQ(read<double>("18446744073709551616"), 18446744073709551616.0);
    EXPECT_EQ(read<double>("1e-400"), 0.0);
}

TEST(SerializerReader, TakesNoRealForAnInteger) {
    EXPECT_EQ(errorToRead<int>("5.0"), refused("expected int, got real"));
    EXPECT_EQ(errorToRead<unsigned int>("1e2"), refused("expected unsigned int, got real"));
}

TEST(SerializerReader, RefusesValuesOfAnotherType) {
    EXPECT_EQ(errorToRead<bool>("1"), refused("expected boolean, got int"));
    EXPECT_EQ(errorToRead<bool>("null"), refused("expected boolean, got null"));
    EXPECT_EQ(errorToRead<int>("true"), refused("expected int, got boolean"));
    EXPECT_EQ(errorToRead<int>("\"1\""), refused("expected int, got string"));
    EXPECT_EQ(errorToRead<unsigned char>("[]"), refused("expected unsigned byte, got array"));
    EXPECT_EQ(errorToRead<double>("\"1\""), refused("expected number, got string"));
    EXPECT_EQ(errorToRead<double>("true"), refused("expected number, got boolean"));
    EXPECT_EQ(errorToRead<std::string>("1"), refused("expected string, got int"));
    EXPECT_EQ(errorToRead<std::string>("18446744073709551615"), refused("expected string, got uint"));
    EXPECT_EQ(errorToRead<std::string>("{}"), refused("expected string, got object"));
    EXPECT_EQ(errorToRead<std::string>("null"), refused("expected string, got null"));
}

TEST(SerializerReader, ReadsStringsWithTheirEscapes) {
    EXPECT_EQ(read<std::string>(R"("a\"b\\c\/\b\f\n\r\t")"), "a\"b\\c/\b\f\n\r\t");
    EXPECT_EQ(read<std::string>(R"("\u00e9\u20AC\ud83d\ude00")"), "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(SerializerReader, ReadsWhatStandsBehindATextOfAnyLength) {
    for (std::size_t length = 0; length < 200; ++length) {
        auto const text = toText(Blob(std::string(length, 'n'), 1, 2, 3, std::string(100, 'c')));
        EXPECT_EQ(toText(*readSerializable(text)), text) << length;
    }
}

TEST(SerializerReader, ANulInAStringRoundTrips) {
    std::string const text("a\0b", 3);
    EXPECT_EQ(read<std::string>(R"("a\u0000b")"), text);
    Serializer s;
    s << text;
    EXPECT_EQ(s.str(), R"("a\u0000b")");
}

TEST(SerializerReader, NamesJsonTypes) {
    EXPECT_EQ(std::string(Serializer::toString(Json::nullValue)), "null");
    EXPECT_EQ(std::string(Serializer::toString(Json::intValue)), "int");
    EXPECT_EQ(std::string(Serializer::toString(Json::uintValue)), "uint");
    EXPECT_EQ(std::string(Serializer::toString(Json::realValue)), "real");
    EXPECT_EQ(std::string(Serializer::toString(Json::stringValue)), "string");
    EXPECT_EQ(std::string(Serializer::toString(Json::booleanValue)), "boolean");
    EXPECT_EQ(std::string(Serializer::toString(Json::arrayValue)), "array");
    EXPECT_EQ(std::string(Serializer::toString(Json::objectValue)), "object");
}

// ---- selecting

TEST(SerializerReader, SelectsMembersByKeyInAnyOrder) {
    Serializer s(R"({"a":1,"b":{"c":2}})");
    int c = 0;
    int a = 0;
    s >> "b" >> "c" >> c >> finished >> "a" >> a >> finished;
    EXPECT_EQ(c, 2);
    EXPECT_EQ(a, 1);
}

template <class T> T readAbsent(T value) {
    Serializer s("{}");
    s >> "absent" >> value;
    return value;
}

TEST(SerializerReader, AnAbsentKeyLeavesTheMemberAsItWasWhateverItsKind) {
    EXPECT_TRUE(readAbsent(true));
    EXPECT_EQ(readAbsent(-17), -17);
    EXPECT_EQ(readAbsent(17U), 17U);
    EXPECT_EQ(readAbsent(static_cast<unsigned char>(17)), 17);
    EXPECT_EQ(readAbsent(static_cast<unsigned short>(17)), 17);
    EXPECT_EQ(readAbsent(1.5), 1.5);
    EXPECT_EQ(readAbsent(std::string("before")), "before");
    EXPECT_EQ(readAbsent(TimeStamp(17)), TimeStamp(17));
}

TEST(SerializerReader, NothingIsFoundBelowAnAbsentKey) {
    Serializer s(R"({"a":1})");
    int deep = -17;
    int a = 0;
    s >> "absent" >> "deeper" >> deep >> finished >> "a" >> a;
    EXPECT_EQ(deep, -17);
    EXPECT_EQ(a, 1);
}

TEST(SerializerReader, RefusesToSelectInWhatIsNotAnObject) {
    for (auto const* const text : {"[]", "[{\"__name__\":\"key\"}]"}) {
        Serializer s(text);
        EXPECT_EQ(errorOf([&] { s >> "key"; }), refused("expected object, got array"));
    }
    Serializer s("\"text\"");
    EXPECT_EQ(errorOf([&] { s >> "key"; }), refused("expected object, got string"));
}

TEST(SerializerReader, SelectsABaseByItsSerialName) {
    Serializer s(R"({"__bases__":[{"__name__":"A","v":1},{"__name__":"B","v":2}]})");
    int value = 0;
    s >> Serializer::bases >> "B" >> basector >> "v" >> value >> finished >> finished;
    EXPECT_EQ(value, 2);
}

TEST(SerializerReader, ABaseThatIsNotThereIsAbsent) {
    Serializer s(R"({"__bases__":[1,{"__name__":2},{"v":3}],"a":1})");
    int value = -17;
    int a = 0;
    s >> Serializer::bases >> "B" >> basector >> "v" >> value >> finished >> finished >> "a" >> a;
    EXPECT_EQ(value, -17);
    EXPECT_EQ(a, 1);
}

TEST(SerializerReader, RefusesBasesThatAreNotAnArray) {
    for (auto const* const value : {"{}", "1", "null", "\"B\""}) {
        Serializer s(std::string(R"({"__bases__":)") + value + "}");
        EXPECT_THAT(errorOf([&] { s >> Serializer::bases >> "B" >> basector; }),
                    StartsWith("SerializerError: __bases__: expected array, got "))
            << value;
    }
}

TEST(SerializerReader, StepsThroughAnArray) {
    Serializer s(R"([1,2])");
    ASSERT_EQ(s.size(), 2U);
    int first = 0;
    int second = 0;
    s.element(0) >> first;
    s.element(1) >> second;
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 2);
}

TEST(SerializerReader, TopNodeTakesTheSelectionAway) {
    Serializer s(R"({"a":[],"b":7})");
    s >> "a";
    EXPECT_EQ(s.topNode().type(), Json::arrayValue);
    int b = 0;
    s >> "b" >> b;
    EXPECT_EQ(b, 7);
}

TEST(SerializerReader, PassesOverPunctuation) {
    Serializer s(R"({"a":7})");
    int a = 0;
    s >> opencurly >> "a" >> colon >> a >> comma >> closecurly;
    EXPECT_EQ(a, 7);
}

TEST(SerializerReader, NamesThePathOfABadValue) {
    Serializer s(R"({"list":[{"ok":1},{"bad":"x"}]})");
    int value = 0;
    s >> "list";
    s.element(1) >> "bad";
    EXPECT_EQ(errorOf([&] { s >> value; }), refused("list[1].bad: expected int, got string"));
}

TEST(SerializerReader, LeavesTheFramesOfBasesOutOfAPath) {
    auto const* const text = R"({"__name__":"zorv::PingMsg","__bases__":[{"__name__":"zorv::Confirmable","__bases__":)"
                             R"([{"__name__":"zorv::TConfirmable","result_":1}]}]})";
    EXPECT_EQ(errorOfReading(text), refused("result_: expected string, got int"));
}

// ---- time stamps, identities and endpoints

TEST(SerializerReader, RefusesHeaderValuesInAnyOtherNotation) {
    EXPECT_EQ(errorToRead<TimeStamp>("\"soon\""), refused("expected time stamp, got \"soon\""));
    for (auto const* const text :
         {"", "x", "11111111222243338444555555555555", "{11111111-2222-4333-8444-555555555555}",
          "11111111-2222-4333-8444-55555555555", "AAAAAAAA-2222-4333-8444-555555555555"}) {
        EXPECT_EQ(errorToRead<boost::uuids::uuid>('"' + std::string(text) + '"'),
                  refused("expected UUID, got \"" + std::string(text) + '"'));
    }
    for (auto const* const text :
         {"", "192.0.2.7", "192.0.2.7:", "192.0.2.7:65536", "192.0.2.7:-1", "192.0.2.7:+1", "192.0.2.7:1 ", ":1",
          "localhost:1", "[192.0.2.7]:1", "2001:db8::7:1", "[2001:db8::7]", "256.0.2.7:1", "192.0.2.7:99999999999"}) {
        EXPECT_EQ(errorToRead<boost::asio::ip::tcp::endpoint>('"' + std::string(text) + '"'),
                  refused("expected TCP endpoint, got \"" + std::string(text) + '"'));
    }
}

TEST(SerializerReader, RefusesAnEndpointWithANulInIt) {
    EXPECT_THAT(errorToRead<boost::asio::ip::tcp::endpoint>(R"("192.0.2.7\u0000x:1")"),
                StartsWith("SerializerError: "));
}

TEST(SerializerReader, ReadsEndpointsOfBothFamilies) {
    for (auto const* const text : {"\"192.0.2.7:4711\"", "\"[2001:db8::7]:65535\"", "\"0.0.0.0:0\""}) {
        Serializer s;
        s << read<boost::asio::ip::tcp::endpoint>(text);
        EXPECT_EQ(s.str(), text);
    }
}

// ---- objects

TEST(SerializerReader, RefusesAClassThatIsNotRegistered) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::NoSuchMsg"})"), refused("unknown class \"zorv::NoSuchMsg\""));
}

TEST(SerializerReader, RefusesAnObjectWithoutAName) {
    EXPECT_EQ(errorOfReading("{}"), refused("object without a \"__name__\""));
    EXPECT_EQ(errorOfReading(R"({"__name__":""})"), refused("object without a \"__name__\""));
    EXPECT_EQ(errorOfReading(R"({"__name__":7})"), refused("__name__: expected string, got int"));
}

TEST(SerializerReader, RefusesARootThatIsNotAnObject) {
    EXPECT_EQ(errorOfReading("[]"), refused("expected object, got array"));
    EXPECT_EQ(errorOfReading("null"), refused("expected object, got null"));
    EXPECT_EQ(errorOfReading("\"zorv::PingMsg\""), refused("expected object, got string"));
    EXPECT_EQ(errorOfReading("1"), refused("expected object, got int"));
}

TEST(SerializerReader, LeavesTheRegistryAsItWasWhenAReadFails) {
    auto const before = SerialRegistry::names();
    for (auto const* const text : {"", "{", R"({"__name__":"zorv::NoSuchMsg"})",
                                   R"({"__name__":"zorv::PingMsg","destination_":{"nodeId_":256}})"}) {
        EXPECT_THAT(errorOfReading(text), StartsWith("SerializerError: ")) << text;
    }
    EXPECT_EQ(SerialRegistry::names(), before);
    EXPECT_EQ(toText(*readSerializable(golden("PingMsg"))), golden("PingMsg"));
}

// ---- texts that are not JSON

TEST(SerializerReader, RefusesATextThatIsCutOffAtAnyByte) {
    auto const text = golden("PingMsg");
    for (std::size_t length = 0; length < text.size(); ++length) {
        EXPECT_THAT(malformed(text.substr(0, length)), StartsWith("SerializerError: malformed text: line 1, column "))
            << length;
    }
}

TEST(SerializerReader, NamesLineAndColumnOfWhatIsMalformed) {
    EXPECT_THAT(malformed(""), StartsWith("SerializerError: malformed text: line 1, column 1: "));
    EXPECT_THAT(malformed("{\"a\":1,\n \"b\" 2}"), StartsWith("SerializerError: malformed text: line 2, column 6: "));
    EXPECT_EQ(malformed("[1,\n  \"a\xFF\"]"), "SerializerError: malformed text: line 2, column 5: not UTF-8");
}

TEST(SerializerReader, RefusesWhatComesAfterTheValue) {
    for (auto const* const text : {"{}{}", "{} x", "1 2", "true false", "{}]", "\"a\"\"b\""}) {
        EXPECT_THAT(malformed(text), HasSubstr("more text after the value")) << text;
    }
}

TEST(SerializerReader, PassesOverWhiteSpaceAroundTheValue) { EXPECT_EQ(read<int>(" \t\r\n7 \t\r\n"), 7); }

TEST(SerializerReader, RefusesComments) {
    for (auto const* const text : {"/**/1", "//x\n1", "[1/**/]", "{\"a\":/*x*/1}", "1//x"}) {
        EXPECT_THAT(malformed(text), StartsWith("SerializerError: malformed text: line ")) << text;
    }
}

TEST(SerializerReader, RefusesAKeyThatComesTwice) {
    EXPECT_EQ(malformed(R"({"a":1,"a":2})"), "SerializerError: malformed text: line 1, column 8: duplicate key \"a\"");
}

TEST(SerializerReader, RefusesMalformedNumbers) {
    for (auto const* const text :
         {"NaN", "nan", "Infinity", "-Infinity", "inf", "-",   "--1",  "+1",   "01",  "-01", "00",
          ".5",  "-.5", "1.",       "1.e5",      "1e",  "1e+", "1ee5", "0x10", "1_0", "- 1", "1.5.5"}) {
        EXPECT_THAT(malformed(text), StartsWith("SerializerError: malformed text: line 1, column ")) << text;
        EXPECT_THAT(malformed("[" + std::string(text) + "]"),
                    StartsWith("SerializerError: malformed text: line 1, column "))
            << text;
    }
}

TEST(SerializerReader, RefusesNumbersTooLargeForADouble) {
    for (auto const* const text : {"1e400", "-1e400", "1e99999999999999999999", "123456789e999999999"}) {
        EXPECT_THAT(malformed(text), StartsWith("SerializerError: malformed text: line 1, column 1: ")) << text;
    }
}

TEST(SerializerReader, RefusesOtherDialectsOfJson) {
    for (auto const* const text :
         {"'a'",       "{a:1}",       "{1:1}",   "{'a':1}", "[1,]", "[,1]", "{\"a\":1,}", "{\"\":1,}",      "[1 2]",
          "{\"a\" 1}", "{\"a\":1;}",  "{\"a\"}", "[1}",     "{]",   "True", "\v1",        "\xEF\xBB\xBF{}", "\"\\x\"",
          "\"\\u12\"", "\"\\u12g4\"", "\"\\",    "\""}) {
        EXPECT_THAT(malformed(text), StartsWith("SerializerError: malformed text: line 1, column ")) << text;
    }
}

TEST(SerializerReader, RefusesARawNul) {
    EXPECT_EQ(malformed(std::string("\"a\0b\"", 5)),
              "SerializerError: malformed text: line 1, column 3: control character in a string");
    EXPECT_EQ(malformed(std::string("1\0", 2)), "SerializerError: malformed text: line 1, column 2: NUL character");
}

TEST(SerializerReader, RefusesRawControlCharactersInStrings) {
    for (char c = 1; c < 0x20; ++c) {
        EXPECT_EQ(malformed(std::string("\"") + c + '"'),
                  "SerializerError: malformed text: line 1, column 2: control character in a string");
    }
}

TEST(SerializerReader, RefusesWhatIsNotUtf8) {
    for (std::string const bytes :
         {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xE0\x80\x80", "\xE2\x82", "\xED\xA0\x80", "\xED\xBF\xBF",
          "\xF0\x80\x80\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFE", "\xFF"}) {
        EXPECT_EQ(malformed("[\"" + bytes + "\"]"), "SerializerError: malformed text: line 1, column 3: not UTF-8");
        EXPECT_EQ(malformed("{\"" + bytes + "\":1}"), "SerializerError: malformed text: line 1, column 3: not UTF-8");
        EXPECT_EQ(malformed("[1," + bytes), "SerializerError: malformed text: line 1, column 4: not UTF-8");
    }
}

TEST(SerializerReader, RefusesHalvesOfSurrogatePairs) {
    for (auto const* const text : {R"("\ud800")", R"("\udbff")", R"("\udc00")", R"("\udfff")", R"("\ud800\u0041")",
                                   R"("\ud800x")", R"("\ud800\n")", R"("\ud800\ud800")", R"("\uDC00\uD800")"}) {
        EXPECT_EQ(malformed(text), "SerializerError: malformed text: line 1, column 2: half of a surrogate pair")
            << text;
    }
    EXPECT_EQ(read<std::string>(R"("\\ud800")"), "\\ud800");
}

// ---- texts that are large

std::string repeated(std::string const& text, std::size_t count) {
    std::string result;
    result.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) { result += text; }
    return result;
}

TEST(SerializerReader, ReadsATextThatIsNestedAsDeepAsAllowed) {
    EXPECT_EQ(malformed(repeated("[", 128) + repeated("]", 128)), "no error");
    EXPECT_EQ(malformed(repeated("{\"a\":", 128) + "1" + repeated("}", 128)), "no error");
}

TEST(SerializerReader, RefusesATextThatIsNestedDeeper) {
    auto const* const complaint = "SerializerError: malformed text: line 1, column 129: nested deeper than 128 levels";
    EXPECT_EQ(malformed(repeated("[", 129) + repeated("]", 129)), complaint);
    EXPECT_EQ(malformed(repeated("[", 100000)), complaint);
    EXPECT_EQ(malformed(repeated("[", 100000) + repeated("]", 100000)), complaint);
    EXPECT_EQ(malformed(repeated("{\"a\":", 100000) + "1" + repeated("}", 100000)),
              "SerializerError: malformed text: line 1, column 641: nested deeper than 128 levels");
}

TEST(SerializerReader, BracketsInStringsAreNoNesting) {
    EXPECT_EQ(read<std::string>('"' + repeated("[{", 1000) + '"'), repeated("[{", 1000));
}

TEST(SerializerReader, RefusesMoreValuesThanAllowed) {
    EXPECT_EQ(malformed("[" + repeated("0,", 1048574) + "0]"), "no error");
    EXPECT_EQ(malformed("[" + repeated("0,", 1048575) + "0]"),
              "SerializerError: malformed text: line 1, column 2097152: more than 1048576 values");
    EXPECT_EQ(malformed("[" + repeated("[],", 1048575) + "0]"),
              "SerializerError: malformed text: line 1, column 3145727: more than 1048576 values");
    EXPECT_EQ(read<std::string>('"' + repeated(",", 1048577) + '"').size(), 1048577U);
}

TEST(SerializerReader, ReadsALineOf100MiB) {
    auto const text =
        R"({"__name__":"zorv::PingMsg","latencyMs_":7,"unknown":")" + std::string(std::size_t(100) << 20, 'x') + "\"}";
    auto const message = readSerializable(text);
    EXPECT_THAT(toText(*message), HasSubstr("\"latencyMs_\":7"));
}

TEST(SerializerReader, RefusesAMalformedLineOf100MiB) {
    auto const text = "[\"" + std::string(std::size_t(100) << 20, 'x');
    EXPECT_THAT(malformed(text), StartsWith("SerializerError: malformed text: line 1, column "));
}

} // namespace
} // namespace zorv
