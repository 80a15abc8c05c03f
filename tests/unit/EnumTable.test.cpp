// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/tables/EnumTable.h"

#include "platform/libtransport/SerialValue.h"
#include "platform/libtransport/tables/FlagTable.h"
#include "platform/libtransport/throwInvalidEnum.h"
#include "tests/support/errorOf.h"
#include "tests/support/json.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

// Enumerations of every kind, defined as the messages define theirs.

namespace zorv::sample {

namespace AddRemoveOp {

enum Enum : int { invalid, add, remove };
ZORV_ENUM_DECLARE()
ZORV_ENUM_DECLARE_HEX()

ZORV_ENUM_DEFINE(enumTable<Enum>())
ZORV_ENUM_DEFINE_HEX

} // namespace AddRemoveOp

namespace FrameCast {

enum Enum : int { singlecast = 0, broadcast = 4, multicast = 8 };
ZORV_ENUM_DECLARE()

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace FrameCast

namespace Maker {

enum Enum : int { unknown = 0, zorv = 575 };
ZORV_ENUM_DECLARE()

ZORV_ENUM_DEFINE(enumTable<Enum, zorv>().open(4))

} // namespace Maker

namespace Detail {

enum Enum : int { noDetail = 0, lost = 1, late = 2, timeout = 32 };
ZORV_ENUM_DECLARE()

ZORV_ENUM_DEFINE(flagTable<Enum>())

} // namespace Detail

namespace ReceivedStatus {

enum Enum : int { routedBusy = 1, lowPower = 2, castMask = 0x0C, explore = 16, foreignFrame = 64 };
ZORV_ENUM_DECLARE()

ZORV_ENUM_DEFINE(flagTable<Enum>().namedOnReading("ReceiveStatus").emptySet("none").field(castMask, FrameCast::table))

} // namespace ReceivedStatus

namespace Answer {

enum Enum : int { unset = -1, no, yes, erase = 7, last = 255, far = 1000, farther = 70000 };
ZORV_ENUM_DECLARE()

ZORV_ENUM_DEFINE((enumTable<Enum, far, farther>().named("Reply").with(erase, "delete")))

} // namespace Answer

namespace Wide {

enum Enum : int { low = 1, high = 1 << 30 };
ZORV_ENUM_DECLARE()

ZORV_ENUM_DEFINE(flagTable<Enum>().emptySet("nothing"))

} // namespace Wide

namespace Command {

enum Enum : int { none };
ZORV_ENUM_DECLARE()

ZORV_ENUM_DEFINE(enumTable<Enum>().open(2, 8))

} // namespace Command

enum Colour : int { red, green, blue, crimson = red };
enum Void : int {};
enum Far : int { near, far = 1000, farther = 2000 };
enum Bit : int { one = 1, two = 2, four = 4, six = 6 };

} // namespace zorv::sample

namespace zorv {
namespace {

using sample::Bit;
using sample::Colour;
using sample::Far;
namespace Answer = sample::Answer;
namespace Command = sample::Command;
namespace Wide = sample::Wide;
using testing::Pair;
namespace AddRemoveOp = sample::AddRemoveOp;
namespace FrameCast = sample::FrameCast;
namespace Maker = sample::Maker;
namespace Detail = sample::Detail;
namespace ReceivedStatus = sample::ReceivedStatus;

template <class Enum> std::string errorOfValue(int value) {
    return errorOf([&] { toString(static_cast<Enum>(value)); });
}

template <class Enum> std::string errorOfWord(std::string const& text) {
    return errorOf([&] {
        Enum value;
        parse(text, value);
    });
}

template <class Enum> std::vector<std::pair<int, std::string>> textsOf() {
    std::vector<std::pair<int, std::string>> texts;
    for (auto const& each : describe(Enum()).texts) { texts.emplace_back(each.value, each.text); }
    return texts;
}

template <class Enum> std::string written(Enum value) {
    std::ostringstream os;
    os << value;
    return os.str();
}

/// What stands in the stream after a value was refused.
template <class Enum> std::string writtenBeforeError(int value) {
    std::ostringstream os;
    EXPECT_THROW(os << static_cast<Enum>(value), InvalidEnumError);
    return os.str();
}

// ---- one of a few values

TEST(EnumTable, WritesTheTextOfEachValue) {
    EXPECT_EQ(written(AddRemoveOp::invalid), "invalid");
    EXPECT_EQ(written(AddRemoveOp::add), "add");
    EXPECT_EQ(written(AddRemoveOp::remove), "remove");
}

TEST(EnumTable, ToStringGivesTheSameText) {
    EXPECT_EQ(toString(AddRemoveOp::invalid), "invalid");
    EXPECT_EQ(toString(AddRemoveOp::add), "add");
    EXPECT_EQ(toString(AddRemoveOp::remove), "remove");
}

TEST(EnumTable, AddParsesToOne) { EXPECT_EQ(static_cast<int>(AddRemoveOp::toEnum("add")), 1); }

TEST(EnumTable, InvalidIsReadAsZero) { EXPECT_EQ(static_cast<int>(AddRemoveOp::toEnum("invalid")), 0); }

TEST(EnumTable, ZeroIsWrittenAsInvalid) { EXPECT_EQ(toString(static_cast<AddRemoveOp::Enum>(0)), "invalid"); }

TEST(EnumTable, AWordInCapitalsIsUnknown) {
    EXPECT_EQ(errorOfWord<AddRemoveOp::Enum>("ADD"), "InvalidEnumError: invalid AddRemoveOp text \"ADD\"");
    EXPECT_EQ(errorOfWord<AddRemoveOp::Enum>("Add"), "InvalidEnumError: invalid AddRemoveOp text \"Add\"");
}

TEST(EnumTable, AnEmptyTextIsUnknown) {
    EXPECT_EQ(errorOfWord<AddRemoveOp::Enum>(""), "InvalidEnumError: invalid AddRemoveOp text \"\"");
    EXPECT_EQ(errorOfWord<AddRemoveOp::Enum>(" \t\n"), "InvalidEnumError: invalid AddRemoveOp text \"\"");
}

TEST(EnumTable, ATextOfTwoWordsParsesOnlyItsFirst) {
    EXPECT_EQ(AddRemoveOp::toEnum("add remove"), AddRemoveOp::add);
    EXPECT_EQ(AddRemoveOp::toEnum("  remove\tno such word"), AddRemoveOp::remove);
    EXPECT_EQ(errorOfWord<AddRemoveOp::Enum>("no such word"), "InvalidEnumError: invalid AddRemoveOp text \"no\"");
}

TEST(EnumTable, ATextThatOnlyBeginsLikeOneIsUnknown) {
    EXPECT_EQ(errorOfWord<AddRemoveOp::Enum>("addd"), "InvalidEnumError: invalid AddRemoveOp text \"addd\"");
    EXPECT_EQ(errorOfWord<AddRemoveOp::Enum>("ad"), "InvalidEnumError: invalid AddRemoveOp text \"ad\"");
    EXPECT_EQ(errorOfWord<AddRemoveOp::Enum>("1"), "InvalidEnumError: invalid AddRemoveOp text \"1\"");
}

TEST(EnumTable, ANumberOutsideTheTableIsAnErrorThatNamesTheEnumerationAndTheNumber) {
    EXPECT_EQ(errorOfValue<AddRemoveOp::Enum>(7), "InvalidEnumError: invalid AddRemoveOp value 7");
    EXPECT_EQ(errorOfValue<AddRemoveOp::Enum>(3), "InvalidEnumError: invalid AddRemoveOp value 3");
    EXPECT_EQ(errorOfValue<AddRemoveOp::Enum>(-1), "InvalidEnumError: invalid AddRemoveOp value -1");
}

TEST(EnumTable, TheErrorTellsTheEnumerationsName) {
    try {
        AddRemoveOp::toEnum("ADD");
        FAIL() << "no error";
    } catch (InvalidEnumError const& error) { EXPECT_EQ(error.enumName(), "AddRemoveOp"); }
}

TEST(EnumTable, NothingIsWrittenForANumberOutsideTheTable) { EXPECT_EQ(writtenBeforeError<AddRemoveOp::Enum>(7), ""); }

TEST(EnumTable, ReadsOneWordFromAStreamAndLeavesTheRest) {
    std::istringstream is(" add remove");
    auto first = AddRemoveOp::invalid;
    auto second = AddRemoveOp::invalid;
    is >> first >> second;
    EXPECT_EQ(first, AddRemoveOp::add);
    EXPECT_EQ(second, AddRemoveOp::remove);
}

TEST(EnumTable, AnUnknownWordLeavesTheTargetUnchanged) {
    std::istringstream is("ADD");
    auto value = AddRemoveOp::remove;
    EXPECT_THROW(is >> value, InvalidEnumError);
    EXPECT_EQ(value, AddRemoveOp::remove);
}

TEST(EnumTable, AnExhaustedStreamGivesAnEmptyWord) {
    std::istringstream is;
    auto value = AddRemoveOp::remove;
    EXPECT_EQ(errorOf([&] { is >> value; }), "InvalidEnumError: invalid AddRemoveOp text \"\"");
    EXPECT_EQ(value, AddRemoveOp::remove);
}

TEST(EnumTable, WritesNoFillCharacters) {
    std::ostringstream os;
    os << std::setw(10) << std::setfill('*') << AddRemoveOp::add << '!';
    EXPECT_EQ(os.str(), "add!");
}

TEST(EnumTable, ToHexIsWhatFormat8BitsGivesWithoutPrefix) {
    EXPECT_EQ(AddRemoveOp::toHex(AddRemoveOp::remove), "02");
    EXPECT_EQ(AddRemoveOp::toHex(AddRemoveOp::remove), format8Bits(2, false));
}

TEST(EnumTable, ToHexTakesTheLowByteOfAnyNumber) {
    EXPECT_EQ(AddRemoveOp::toHex(static_cast<AddRemoveOp::Enum>(0x1FA)), "fa");
    EXPECT_EQ(AddRemoveOp::toHex(static_cast<AddRemoveOp::Enum>(-1)), "ff");
}

TEST(EnumTable, ManyThreadsMayParseAtOnce) {
    std::vector<std::thread> threads;
    std::vector<int> sums(4);
    for (auto& sum : sums) {
        threads.emplace_back([&sum] {
            for (int i = 0; i < 1000; ++i) { sum += FrameCast::toEnum("multicast") + FrameCast::toEnum("broadcast"); }
        });
    }
    for (auto& thread : threads) { thread.join(); }
    EXPECT_EQ(sums, std::vector<int>(4, 12000));
}

TEST(EnumTable, DescribesItsTexts) {
    auto const type = describe(AddRemoveOp::Enum());
    EXPECT_EQ(type.kind, TypeDescriptor::Kind::enumeration);
    EXPECT_EQ(type.name, "AddRemoveOp");
    ASSERT_EQ(type.texts.size(), 3U);
    EXPECT_EQ(type.texts[2].value, 2);
    EXPECT_EQ(type.texts[2].text, "remove");
}

TEST(EnumTable, ReadsAWordWholeWhateverTheWidthOfTheStream) {
    std::istringstream is("remove add");
    auto value = AddRemoveOp::invalid;
    is >> std::setw(3) >> value;
    EXPECT_EQ(value, AddRemoveOp::remove);
    EXPECT_EQ(is.width(), 0);
}

TEST(EnumTable, AppendsTheTextToWhatIsThere) {
    std::string text = "op=";
    appendText(text, AddRemoveOp::add);
    EXPECT_EQ(text, "op=add");
}

TEST(EnumTable, ParsesAPartOfALongerText) {
    auto value = AddRemoveOp::invalid;
    parse(std::string_view("removed").substr(0, 6), value);
    EXPECT_EQ(value, AddRemoveOp::remove);
}

// ---- how a table comes from its enumeration

TEST(EnumTable, FindsTheEnumeratorsOfAByteAndTakesThoseBeyondThatAreListed) {
    EXPECT_THAT(textsOf<Answer::Enum>(),
                testing::ElementsAre(Pair(-1, "unset"), Pair(0, "no"), Pair(1, "yes"), Pair(7, "delete"),
                                     Pair(255, "last"), Pair(1000, "far"), Pair(70000, "farther")));
    EXPECT_EQ(toString(Answer::farther), "farther");
    EXPECT_EQ(Answer::toEnum("farther"), Answer::farther);
    EXPECT_EQ(toString(Answer::unset), "unset");
}

TEST(EnumTable, UsesTheTextOfTheFirstOfTwoEnumeratorsWithOneNumber) {
    constexpr auto table = enumTable<Colour>();
    static constexpr auto const& rows = Enumerators<Colour, enums::BytesAnd<>>::rows;
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].text, "red");
    EXPECT_TRUE(table.isOrderly());
}

TEST(EnumTable, HasTheNameOfItsScopeUnlessItIsGivenAnother) {
    EXPECT_EQ(describe(Maker::Enum()).name, "Maker");
    EXPECT_EQ(describe(Answer::Enum()).name, "Reply");
    EXPECT_EQ(enums::name<Colour>.view(), "Colour");
    EXPECT_EQ(errorOfValue<Answer::Enum>(2), "InvalidEnumError: invalid Reply value 2");
    EXPECT_EQ(errorOfWord<Answer::Enum>("maybe"), "InvalidEnumError: invalid Reply text \"maybe\"");
}

TEST(EnumTable, MayGiveAValueATextThatCannotBeAnIdentifier) {
    EXPECT_EQ(toString(Answer::erase), "delete");
    EXPECT_EQ(Answer::toEnum("delete"), Answer::erase);
    EXPECT_EQ(errorOfWord<Answer::Enum>("erase"), "InvalidEnumError: invalid Reply text \"erase\"");
}

TEST(EnumTable, WithoutValuesOrWithATextTwiceOrOutOfOrderDoesNotCompile) {
    EXPECT_FALSE(enumTable<sample::Void>().isOrderly());
    EXPECT_FALSE(enumTable<Colour>().with(sample::red, "green").isOrderly());
    EXPECT_FALSE(enumTable<Colour>().with(sample::red, "").isOrderly());
    EXPECT_FALSE((enumTable<Far, sample::farther, sample::far>().isOrderly()));
    EXPECT_FALSE((enumTable<Far, sample::near>().isOrderly()));
    EXPECT_TRUE((enumTable<Far, sample::far, sample::farther>().isOrderly()));
}

TEST(FlagTable, TakesTheEnumeratorsOfOneBitAsItsFlags) {
    static constexpr auto const& flags = Enumerators<Bit, enums::Bits>::rows;
    ASSERT_EQ(flags.size(), 3U);
    EXPECT_EQ(flags[2].text, "four");
    EXPECT_EQ(toString(static_cast<Wide::Enum>((1 << 30) | 1)), "low|high");
    EXPECT_EQ(toString(Wide::Enum()), "nothing");
}

TEST(FlagTable, WithoutATextOfTheEmptySetOrWithAFlagInItsFieldDoesNotCompile) {
    static constexpr auto colours = enumTable<Colour>();
    EXPECT_FALSE(flagTable<Bit>().isOrderly());
    EXPECT_FALSE(flagTable<Bit>().emptySet("two").isOrderly());
    EXPECT_FALSE(flagTable<Bit>().emptySet("none").field(4, colours).isOrderly());
    EXPECT_TRUE(flagTable<Bit>().emptySet("none").isOrderly());
    EXPECT_TRUE(flagTable<Bit>().emptySet("none").field(8, colours).isOrderly());
}

// ---- open sets

TEST(OpenEnumTable, WritesAKnownValueAsItsText) {
    EXPECT_EQ(toString(Maker::zorv), "zorv");
    EXPECT_EQ(written(Maker::unknown), "unknown");
}

TEST(OpenEnumTable, WritesAnUnknownValueInHex) {
    EXPECT_EQ(toString(static_cast<Maker::Enum>(1)), "0x0001");
    EXPECT_EQ(written(static_cast<Maker::Enum>(0xFACE)), "0xface");
}

TEST(OpenEnumTable, ReadsBothFormsBack) {
    EXPECT_EQ(Maker::toEnum("zorv"), Maker::zorv);
    EXPECT_EQ(static_cast<int>(Maker::toEnum("0xface")), 0xFACE);
    EXPECT_EQ(static_cast<int>(Maker::toEnum("0x0001")), 1);
}

TEST(OpenEnumTable, RefusesANumberThatIsTooLarge) {
    EXPECT_EQ(errorOfValue<Maker::Enum>(0x10000), "InvalidEnumError: invalid Maker value 65536");
    EXPECT_EQ(errorOfValue<Maker::Enum>(-1), "InvalidEnumError: invalid Maker value -1");
    for (auto const* const text : {"0x10000", "0x100000000", "0x10000000000000000", "0x00001"}) {
        EXPECT_EQ(errorOfWord<Maker::Enum>(text), "InvalidEnumError: invalid Maker text \"" + std::string(text) + '"');
    }
}

TEST(OpenEnumTable, MayWriteMoreDigitsThanTheLeast) {
    for (auto const& [number, text] : {std::pair(7, "0x07"), std::pair(0xFF, "0xff"), std::pair(0x100, "0x100"),
                                       std::pair(0xABCDE, "0xabcde"), std::pair(0x7FFFFFFF, "0x7fffffff")}) {
        EXPECT_EQ(toString(static_cast<Command::Enum>(number)), text);
        EXPECT_EQ(static_cast<int>(Command::toEnum(text)), number);
    }
    EXPECT_EQ(errorOfWord<Command::Enum>("0x123456789"), "InvalidEnumError: invalid Command text \"0x123456789\"");
}

TEST(OpenEnumTable, RefusesWhatIsNotHex) {
    for (auto const* const text : {"0x", "0xg", "0x-1", "0x+1", "x1", "1", "0X1", "0x1z", "nobody"}) {
        EXPECT_EQ(errorOfWord<Maker::Enum>(text), "InvalidEnumError: invalid Maker text \"" + std::string(text) + '"');
    }
}

TEST(OpenEnumTable, DescribesItselfAsOpen) { EXPECT_EQ(describe(Maker::Enum()).kind, TypeDescriptor::Kind::openSet); }

// ---- sets of flags

TEST(FlagTable, WritesTheTextsOfItsFlagsInTheTablesOrder) {
    EXPECT_EQ(toString(static_cast<Detail::Enum>(1)), "lost");
    EXPECT_EQ(toString(static_cast<Detail::Enum>(33)), "lost|timeout");
    EXPECT_EQ(written(static_cast<Detail::Enum>(35)), "lost|late|timeout");
}

TEST(FlagTable, WritesTheEmptySetAsATextOfItsOwn) { EXPECT_EQ(toString(Detail::noDetail), "noDetail"); }

TEST(FlagTable, AnUnknownBitIsAnErrorAfterTheKnownOnesHaveBeenWritten) {
    EXPECT_EQ(errorOfValue<Detail::Enum>(65), "InvalidEnumError: invalid Detail value 65");
    EXPECT_EQ(writtenBeforeError<Detail::Enum>(67), "lost|late");
    EXPECT_EQ(writtenBeforeError<Detail::Enum>(64), "");
    EXPECT_EQ(writtenBeforeError<Detail::Enum>(4), "");
}

TEST(FlagTable, ReadsListsInTheTablesOrder) {
    EXPECT_EQ(static_cast<int>(Detail::toEnum("lost")), 1);
    EXPECT_EQ(static_cast<int>(Detail::toEnum("late|timeout")), 34);
    EXPECT_EQ(static_cast<int>(Detail::toEnum("lost|late|timeout next")), 35);
}

TEST(FlagTable, ReadsTheEmptySetsTextOnlyAtTheFrontWhereItAddsNothing) {
    EXPECT_EQ(static_cast<int>(Detail::toEnum("noDetail")), 0);
    EXPECT_EQ(static_cast<int>(Detail::toEnum("noDetail|timeout")), 32);
    EXPECT_EQ(errorOfWord<Detail::Enum>("timeout|noDetail"),
              "InvalidEnumError: invalid Detail text \"timeout|noDetail\"");
}

TEST(FlagTable, AnEmptyTextIsTheEmptySet) { EXPECT_EQ(static_cast<int>(Detail::toEnum("")), 0); }

TEST(FlagTable, RefusesUnknownTextsRepetitionsAndAnotherOrder) {
    for (auto const* const text :
         {"timeout|lost", "lost|lost", "lost|", "|lost", "lost||late", "|", "Lost", "lost,late", "lost|soon"}) {
        EXPECT_EQ(errorOfWord<Detail::Enum>(text),
                  "InvalidEnumError: invalid Detail text \"" + std::string(text) + '"');
    }
}

TEST(FlagTable, DescribesTheEmptySetAndItsFlags) {
    auto const type = describe(Detail::Enum());
    EXPECT_EQ(type.kind, TypeDescriptor::Kind::flagSet);
    ASSERT_EQ(type.texts.size(), 4U);
    EXPECT_EQ(type.texts[0].text, "noDetail");
    EXPECT_EQ(type.texts[3].value, 32);
}

// ---- sets of flags with a field

TEST(FlagTableWithField, WritesTheFieldLast) {
    EXPECT_EQ(toString(static_cast<ReceivedStatus::Enum>(0x13)), "routedBusy|lowPower|explore|singlecast");
    EXPECT_EQ(toString(static_cast<ReceivedStatus::Enum>(0x49)), "routedBusy|foreignFrame|multicast");
}

TEST(FlagTableWithField, WritesTheEmptySetsTextWhereThereIsOnlyTheField) {
    EXPECT_EQ(toString(static_cast<ReceivedStatus::Enum>(0)), "none|singlecast");
    EXPECT_EQ(toString(static_cast<ReceivedStatus::Enum>(4)), "none|broadcast");
}

TEST(FlagTableWithField, AnUnknownBitIsAnErrorBeforeTheFieldIsWritten) {
    EXPECT_EQ(errorOfValue<ReceivedStatus::Enum>(0x20), "InvalidEnumError: invalid ReceivedStatus value 32");
    EXPECT_EQ(errorOfValue<ReceivedStatus::Enum>(0x80), "InvalidEnumError: invalid ReceivedStatus value 128");
    EXPECT_EQ(writtenBeforeError<ReceivedStatus::Enum>(0x25), "routedBusy");
}

TEST(FlagTableWithField, AFieldValueThatTheOtherEnumerationLacksIsItsError) {
    EXPECT_EQ(errorOfValue<ReceivedStatus::Enum>(0x0C), "InvalidEnumError: invalid FrameCast value 12");
    EXPECT_EQ(writtenBeforeError<ReceivedStatus::Enum>(0x0D), "routedBusy|");
}

TEST(FlagTableWithField, ReadsTheFieldLast) {
    EXPECT_EQ(static_cast<int>(ReceivedStatus::toEnum("none|singlecast")), 0);
    EXPECT_EQ(static_cast<int>(ReceivedStatus::toEnum("routedBusy|foreignFrame|multicast")), 0x49);
    EXPECT_EQ(static_cast<int>(ReceivedStatus::toEnum("explore")), 0x10);
}

TEST(FlagTableWithField, NamesItselfDifferentlyWhenReading) {
    EXPECT_EQ(errorOfWord<ReceivedStatus::Enum>("lowPower|routedBusy"),
              "InvalidEnumError: invalid ReceiveStatus text \"lowPower|routedBusy\"");
}

// ---- on the wire

TEST(EnumOnTheWire, IsItsText) {
    Serializer s;
    s << AddRemoveOp::remove << comma << static_cast<Detail::Enum>(33) << comma << static_cast<Maker::Enum>(1);
    EXPECT_EQ(s.str(), R"("remove","lost|timeout","0x0001")");
}

TEST(EnumOnTheWire, IsReadFromItsText) {
    auto value = AddRemoveOp::invalid;
    Serializer s("\"remove\"");
    s >> value;
    EXPECT_EQ(value, AddRemoveOp::remove);
}

TEST(EnumOnTheWire, RefusesAnUnknownTextAndKeepsItsValue) {
    auto value = AddRemoveOp::remove;
    Serializer s("\"ADD\"");
    EXPECT_EQ(errorOf([&] { s >> value; }), "InvalidEnumError: invalid AddRemoveOp text \"ADD\"");
    EXPECT_EQ(value, AddRemoveOp::remove);
}

TEST(EnumOnTheWire, RefusesANumber) {
    auto value = AddRemoveOp::remove;
    Serializer s("1");
    EXPECT_EQ(errorOf([&] { s >> value; }), "SerializerError: expected string, got int");
}

TEST(EnumOnTheWire, CannotBeWrittenWithANumberOutsideItsTable) {
    Serializer s;
    EXPECT_EQ(errorOf([&] { s << static_cast<AddRemoveOp::Enum>(7); }),
              "InvalidEnumError: invalid AddRemoveOp value 7");
    EXPECT_EQ(s.str(), "");
}

} // namespace
} // namespace zorv
