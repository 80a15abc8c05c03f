#include "platform/libtransport/EnumTable.h"

#include "platform/libtransport/SerialValue.h"
#include "tests/unit/wire.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

// Enumerations of every kind, defined as the messages define theirs.

namespace zorv::sample {

namespace AddRemoveOp {

enum Enum : int { invalid, add, remove };
ZORV_ENUM_DECLARE()
ZORV_ENUM_DECLARE_HEX()

constexpr auto table = enumTable<Enum>("AddRemoveOp", {{invalid, "invalid"}, {add, "add"}, {remove, "remove"}});
ZORV_ENUM_DEFINE(table)
ZORV_ENUM_DEFINE_HEX

} // namespace AddRemoveOp

namespace FrameCast {

enum Enum : int { singlecast = 0, broadcast = 4, multicast = 8 };
ZORV_ENUM_DECLARE()

constexpr auto table =
    enumTable<Enum>("FrameCast", {{singlecast, "singlecast"}, {broadcast, "broadcast"}, {multicast, "multicast"}});
ZORV_ENUM_DEFINE(table)

} // namespace FrameCast

namespace Maker {

enum Enum : int { unknown = 0, zorv = 575 };
ZORV_ENUM_DECLARE()

constexpr auto table = openEnumTable<Enum>("Maker", 4, {{unknown, "unknown"}, {zorv, "zorv"}});
ZORV_ENUM_DEFINE(table)

} // namespace Maker

namespace Detail {

enum Enum : int { noDetail = 0, lost = 1, late = 2, timeout = 32 };
ZORV_ENUM_DECLARE()

constexpr auto table = flagTable<Enum>("Detail", "noDetail", {{lost, "lost"}, {late, "late"}, {timeout, "timeout"}});
ZORV_ENUM_DEFINE(table)

} // namespace Detail

namespace ReceivedStatus {

enum Enum : int { routedBusy = 1, lowPower = 2, explore = 16, foreignFrame = 64 };
ZORV_ENUM_DECLARE()

constexpr auto table = flagTable<Enum>(
    "ReceivedStatus", "ReceiveStatus", "none",
    {{routedBusy, "routedBusy"}, {lowPower, "lowPower"}, {explore, "explore"}, {foreignFrame, "foreignFrame"}},
    flagField<0x0C>(FrameCast::table));
ZORV_ENUM_DEFINE(table)

} // namespace ReceivedStatus

enum Colour : int { red, green, blue };
enum Bit : int { one = 1, two = 2, four = 4 };

} // namespace zorv::sample

namespace zorv {
namespace {

using sample::Bit;
using sample::Colour;
namespace AddRemoveOp = sample::AddRemoveOp;
namespace FrameCast = sample::FrameCast;
namespace Maker = sample::Maker;
namespace Detail = sample::Detail;
namespace ReceivedStatus = sample::ReceivedStatus;

template <class Enum> Refusal refusalOfValue(int value) {
    return refusalOf([&] { toString(static_cast<Enum>(value)); });
}

template <class Enum> Refusal refusalOfWord(std::string const& text) {
    return refusalOf([&] {
        Enum value;
        parse(text, value);
    });
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
    EXPECT_EQ(refusalOfWord<AddRemoveOp::Enum>("ADD"),
              (Refusal{"InvalidEnumError", "invalid AddRemoveOp text \"ADD\""}));
    EXPECT_EQ(refusalOfWord<AddRemoveOp::Enum>("Add"),
              (Refusal{"InvalidEnumError", "invalid AddRemoveOp text \"Add\""}));
}

TEST(EnumTable, AnEmptyTextIsUnknown) {
    EXPECT_EQ(refusalOfWord<AddRemoveOp::Enum>(""), (Refusal{"InvalidEnumError", "invalid AddRemoveOp text \"\""}));
    EXPECT_EQ(refusalOfWord<AddRemoveOp::Enum>(" \t\n"),
              (Refusal{"InvalidEnumError", "invalid AddRemoveOp text \"\""}));
}

TEST(EnumTable, ATextOfTwoWordsParsesOnlyItsFirst) {
    EXPECT_EQ(AddRemoveOp::toEnum("add remove"), AddRemoveOp::add);
    EXPECT_EQ(AddRemoveOp::toEnum("  remove\tno such word"), AddRemoveOp::remove);
    EXPECT_EQ(refusalOfWord<AddRemoveOp::Enum>("no such word"),
              (Refusal{"InvalidEnumError", "invalid AddRemoveOp text \"no\""}));
}

TEST(EnumTable, ATextThatOnlyBeginsLikeOneIsUnknown) {
    EXPECT_EQ(refusalOfWord<AddRemoveOp::Enum>("addd").text, "invalid AddRemoveOp text \"addd\"");
    EXPECT_EQ(refusalOfWord<AddRemoveOp::Enum>("ad").text, "invalid AddRemoveOp text \"ad\"");
    EXPECT_EQ(refusalOfWord<AddRemoveOp::Enum>("1").text, "invalid AddRemoveOp text \"1\"");
}

TEST(EnumTable, ANumberOutsideTheTableIsAnErrorThatNamesTheEnumerationAndTheNumber) {
    EXPECT_EQ(refusalOfValue<AddRemoveOp::Enum>(7), (Refusal{"InvalidEnumError", "invalid AddRemoveOp value 7"}));
    EXPECT_EQ(refusalOfValue<AddRemoveOp::Enum>(3), (Refusal{"InvalidEnumError", "invalid AddRemoveOp value 3"}));
    EXPECT_EQ(refusalOfValue<AddRemoveOp::Enum>(-1), (Refusal{"InvalidEnumError", "invalid AddRemoveOp value -1"}));
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
    EXPECT_EQ(refusalOf([&] { is >> value; }), (Refusal{"InvalidEnumError", "invalid AddRemoveOp text \"\""}));
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

// ---- what does not compile as a table

TEST(EnumTable, ATableThatMissesADeclaredValueIsIncomplete) {
    constexpr auto last = enumTable<Colour>("Colour", {{sample::red, "red"}, {sample::green, "green"}});
    constexpr auto middle = enumTable<Colour>("Colour", {{sample::red, "red"}, {sample::blue, "blue"}});
    constexpr auto all =
        enumTable<Colour>("Colour", {{sample::red, "red"}, {sample::green, "green"}, {sample::blue, "blue"}});
    EXPECT_FALSE(last.isComplete<last.numbersToProve()>());
    EXPECT_FALSE(middle.isComplete<middle.numbersToProve()>());
    EXPECT_TRUE(all.isComplete<all.numbersToProve()>());
}

TEST(EnumTable, ATableWithAValueThatIsNotDeclaredIsRefused) {
    constexpr auto table = enumTable<Colour>(
        "Colour",
        {{sample::red, "red"}, {sample::green, "green"}, {sample::blue, "blue"}, {static_cast<Colour>(3), "violet"}});
    EXPECT_FALSE(table.isComplete<table.numbersToProve()>());
}

TEST(EnumTable, ATableOutOfOrderOrWithATextTwiceOrEmptyIsRefused) {
    EXPECT_FALSE(enumTable<Colour>("Colour", {{sample::green, "green"}, {sample::red, "red"}}).isOrderly());
    EXPECT_FALSE(enumTable<Colour>("Colour", {{sample::red, "red"}, {sample::red, "rouge"}}).isOrderly());
    EXPECT_FALSE(enumTable<Colour>("Colour", {{sample::red, "red"}, {sample::green, "red"}}).isOrderly());
    EXPECT_FALSE(enumTable<Colour>("Colour", {{sample::red, "red"}, {sample::green, ""}}).isOrderly());
    EXPECT_TRUE(enumTable<Colour>("Colour", {{sample::red, "red"}, {sample::green, "green"}}).isOrderly());
}

TEST(FlagTable, ATableThatMissesADeclaredBitIsIncomplete) {
    constexpr auto part = flagTable<Bit>("Bit", "none", {{sample::one, "one"}, {sample::four, "four"}});
    constexpr auto all =
        flagTable<Bit>("Bit", "none", {{sample::one, "one"}, {sample::two, "two"}, {sample::four, "four"}});
    EXPECT_FALSE(part.isComplete<part.numbersToProve()>());
    EXPECT_TRUE(all.isComplete<all.numbersToProve()>());
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
    EXPECT_EQ(refusalOfValue<Maker::Enum>(0x10000), (Refusal{"InvalidEnumError", "invalid Maker value 65536"}));
    EXPECT_EQ(refusalOfValue<Maker::Enum>(-1), (Refusal{"InvalidEnumError", "invalid Maker value -1"}));
    for (auto const* const text : {"0x10000", "0x100000000", "0x10000000000000000", "0x00001"}) {
        EXPECT_EQ(refusalOfWord<Maker::Enum>(text),
                  (Refusal{"InvalidEnumError", "invalid Maker text \"" + std::string(text) + '"'}));
    }
}

TEST(OpenEnumTable, RefusesWhatIsNotHex) {
    for (auto const* const text : {"0x", "0xg", "0x-1", "0x+1", "x1", "1", "0X1", "0x1z", "nobody"}) {
        EXPECT_EQ(refusalOfWord<Maker::Enum>(text),
                  (Refusal{"InvalidEnumError", "invalid Maker text \"" + std::string(text) + '"'}));
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
    EXPECT_EQ(refusalOfValue<Detail::Enum>(65), (Refusal{"InvalidEnumError", "invalid Detail value 65"}));
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
    EXPECT_EQ(refusalOfWord<Detail::Enum>("timeout|noDetail"),
              (Refusal{"InvalidEnumError", "invalid Detail text \"timeout|noDetail\""}));
}

TEST(FlagTable, AnEmptyTextIsTheEmptySet) { EXPECT_EQ(static_cast<int>(Detail::toEnum("")), 0); }

TEST(FlagTable, RefusesUnknownTextsRepetitionsAndAnotherOrder) {
    for (auto const* const text :
         {"timeout|lost", "lost|lost", "lost|", "|lost", "lost||late", "|", "Lost", "lost,late", "lost|soon"}) {
        EXPECT_EQ(refusalOfWord<Detail::Enum>(text),
                  (Refusal{"InvalidEnumError", "invalid Detail text \"" + std::string(text) + '"'}));
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
    EXPECT_EQ(refusalOfValue<ReceivedStatus::Enum>(0x20),
              (Refusal{"InvalidEnumError", "invalid ReceivedStatus value 32"}));
    EXPECT_EQ(refusalOfValue<ReceivedStatus::Enum>(0x80),
              (Refusal{"InvalidEnumError", "invalid ReceivedStatus value 128"}));
    EXPECT_EQ(writtenBeforeError<ReceivedStatus::Enum>(0x25), "routedBusy");
}

TEST(FlagTableWithField, AFieldValueThatTheOtherEnumerationLacksIsItsError) {
    EXPECT_EQ(refusalOfValue<ReceivedStatus::Enum>(0x0C), (Refusal{"InvalidEnumError", "invalid FrameCast value 12"}));
    EXPECT_EQ(writtenBeforeError<ReceivedStatus::Enum>(0x0D), "routedBusy|");
}

TEST(FlagTableWithField, ReadsTheFieldLast) {
    EXPECT_EQ(static_cast<int>(ReceivedStatus::toEnum("none|singlecast")), 0);
    EXPECT_EQ(static_cast<int>(ReceivedStatus::toEnum("routedBusy|foreignFrame|multicast")), 0x49);
    EXPECT_EQ(static_cast<int>(ReceivedStatus::toEnum("explore")), 0x10);
}

TEST(FlagTableWithField, NamesItselfDifferentlyWhenReading) {
    EXPECT_EQ(refusalOfWord<ReceivedStatus::Enum>("lowPower|routedBusy"),
              (Refusal{"InvalidEnumError", "invalid ReceiveStatus text \"lowPower|routedBusy\""}));
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
    EXPECT_EQ(refusalOf([&] { s >> value; }), (Refusal{"InvalidEnumError", "invalid AddRemoveOp text \"ADD\""}));
    EXPECT_EQ(value, AddRemoveOp::remove);
}

TEST(EnumOnTheWire, RefusesANumber) {
    auto value = AddRemoveOp::remove;
    Serializer s("1");
    EXPECT_EQ(refusalOf([&] { s >> value; }), (Refusal{"SerializerError", "expected string, got int"}));
}

TEST(EnumOnTheWire, CannotBeWrittenWithANumberOutsideItsTable) {
    Serializer s;
    EXPECT_EQ(refusalOf([&] { s << static_cast<AddRemoveOp::Enum>(7); }),
              (Refusal{"InvalidEnumError", "invalid AddRemoveOp value 7"}));
    EXPECT_EQ(s.str(), "");
}

} // namespace
} // namespace zorv
