// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/CommandClassMsg.h"

#include "platform/libtransport/throwInvalidEnum.h"
#include "platform/libzorvshared/RawCommand.h"
#include "platform/libzwaved/Zwaved.h"
#include "tests/support/errorOf.h"
#include "tests/support/golden.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"

#include <boost/make_shared.hpp>

namespace zorv {
namespace {

using Bytes = std::vector<unsigned char>;

ReceivedStatus::Enum status(int bits) { return static_cast<ReceivedStatus::Enum>(bits); }

int read(std::string const& text) { return static_cast<int>(ReceivedStatus::toEnum(text)); }

std::string readError(std::string const& text) {
    return errorOf([&] { ReceivedStatus::toEnum(text); });
}

CommandClassMsg message(Bytes const& bytes, int rxStatus = 0) {
    return {ZwaveAddress(0xC0FFEE01, 5), status(rxStatus), boost::make_shared<RawCommand>(bytes), MessageRole::report};
}

TEST(FrameCast, HasItsThreeTexts) {
    EXPECT_EQ(FrameCast::toString(static_cast<FrameCast::Enum>(0)), "singlecast");
    EXPECT_EQ(FrameCast::toString(static_cast<FrameCast::Enum>(4)), "broadcast");
    EXPECT_EQ(FrameCast::toString(static_cast<FrameCast::Enum>(8)), "multicast");
    EXPECT_EQ(static_cast<int>(FrameCast::toEnum("singlecast")), 0);
    EXPECT_EQ(static_cast<int>(FrameCast::toEnum("broadcast")), 4);
    EXPECT_EQ(static_cast<int>(FrameCast::toEnum("multicast")), 8);
}

TEST(FrameCast, RefusesUnknownNumbersAndTexts) {
    EXPECT_EQ(errorOf([] { FrameCast::toString(static_cast<FrameCast::Enum>(12)); }),
              "InvalidEnumError: invalid FrameCast value 12");
    EXPECT_EQ(errorOf([] { FrameCast::toString(static_cast<FrameCast::Enum>(1)); }),
              "InvalidEnumError: invalid FrameCast value 1");
    EXPECT_EQ(errorOf([] { FrameCast::toEnum("Broadcast"); }),
              "InvalidEnumError: invalid FrameCast text \"Broadcast\"");
}

TEST(FrameCast, IsWrittenToAndReadFromStreams) {
    std::stringstream stream;
    stream << static_cast<FrameCast::Enum>(8);
    EXPECT_EQ(stream.str(), "multicast");
    auto cast = FrameCast::singlecast;
    stream >> cast;
    EXPECT_EQ(static_cast<int>(cast), 8);
}

TEST(ReceivedStatus, ReadsAnEmptyTextAsNoFlag) { EXPECT_EQ(static_cast<int>(ReceivedStatus::toEnum("")), 0); }

TEST(ReceivedStatus, EndsItsTextWithTheFrameCast) {
    EXPECT_EQ(ReceivedStatus::toString(status(0x00)), "none|singlecast");
    EXPECT_EQ(ReceivedStatus::toString(status(0x04)), "none|broadcast");
    EXPECT_EQ(ReceivedStatus::toString(status(0x08)), "none|multicast");
    EXPECT_EQ(ReceivedStatus::toString(status(0x13)), "routedBusy|lowPower|explore|singlecast");
    EXPECT_EQ(ReceivedStatus::toString(status(0x49)), "routedBusy|foreignFrame|multicast");
    EXPECT_EQ(ReceivedStatus::toString(status(0x57)), "routedBusy|lowPower|explore|foreignFrame|broadcast");
}

TEST(ReceivedStatus, NamesItselfInTheErrorOfWritingAnUnknownBit) {
    EXPECT_EQ(errorOf([] { toString(status(0x20)); }), "InvalidEnumError: invalid ReceivedStatus value 32");
    EXPECT_EQ(errorOf([] { toString(status(0x80)); }), "InvalidEnumError: invalid ReceivedStatus value 128");
    EXPECT_EQ(errorOf([] { toString(status(0x100)); }), "InvalidEnumError: invalid ReceivedStatus value 256");
}

TEST(ReceivedStatus, WritesTheKnownFlagsBeforeItRefusesAnUnknownBit) {
    std::ostringstream os;
    EXPECT_THROW(os << status(0x31), InvalidEnumError);
    EXPECT_EQ(os.str(), "routedBusy|explore");
}

TEST(ReceivedStatus, WritesNothingBeforeItRefusesALoneUnknownBit) {
    std::ostringstream os;
    EXPECT_THROW(os << status(0x24), InvalidEnumError);
    EXPECT_EQ(os.str(), "");
}

TEST(ReceivedStatus, WritesTheFlagsBeforeItRefusesAnUnknownFrameCast) {
    std::ostringstream os;
    EXPECT_EQ(errorOf([&] { os << status(0x4C); }), "InvalidEnumError: invalid FrameCast value 12");
    EXPECT_EQ(os.str(), "foreignFrame|");
}

TEST(ReceivedStatus, ReadsWhatItWrites) {
    for (int const bits : {0x00, 0x01, 0x02, 0x04, 0x08, 0x10, 0x40, 0x13, 0x49, 0x57, 0x5B}) {
        EXPECT_EQ(read(ReceivedStatus::toString(status(bits))), bits);
    }
}

TEST(ReceivedStatus, ReadsABroadcastWithAndWithoutNone) {
    EXPECT_EQ(read("none|broadcast"), 0x04);
    EXPECT_EQ(read("broadcast"), 0x04);
}

TEST(ReceivedStatus, ReadsATextWithoutAFrameCastAsSinglecast) {
    EXPECT_EQ(read("lowPower|explore"), 0x12);
    EXPECT_EQ(read("none"), 0x00);
}

TEST(ReceivedStatus, KeepsTheLastOfSeveralFrameCasts) {
    EXPECT_EQ(read("broadcast|multicast"), 0x08);
    EXPECT_EQ(read("singlecast|broadcast"), 0x04);
}

TEST(ReceivedStatus, ReadsNoneBeforeFlags) { EXPECT_EQ(read("none|lowPower|multicast"), 0x0A); }

TEST(ReceivedStatus, RefusesTextsOutOfOrderAsReceiveStatus) {
    EXPECT_EQ(readError("multicast|broadcast"), "InvalidEnumError: invalid ReceiveStatus text \"multicast|broadcast\"");
    EXPECT_EQ(readError("lowPower|routedBusy"), "InvalidEnumError: invalid ReceiveStatus text \"lowPower|routedBusy\"");
    EXPECT_EQ(readError("lowPower|none"), "InvalidEnumError: invalid ReceiveStatus text \"lowPower|none\"");
}

TEST(ReceivedStatus, RefusesRepeatedUnknownAndEmptyPieces) {
    EXPECT_EQ(readError("lowPower|lowPower"), "InvalidEnumError: invalid ReceiveStatus text \"lowPower|lowPower\"");
    EXPECT_EQ(readError("LowPower"), "InvalidEnumError: invalid ReceiveStatus text \"LowPower\"");
    EXPECT_EQ(readError("lowPower|"), "InvalidEnumError: invalid ReceiveStatus text \"lowPower|\"");
}

TEST(ReceivedStatus, LeavesTheTargetUnchangedWhenReadingFails) {
    std::istringstream is("multicast|broadcast");
    auto value = status(0x41);
    EXPECT_THROW(is >> value, InvalidEnumError);
    EXPECT_EQ(static_cast<int>(value), 0x41);
}

TEST(ReceivedStatus, ReadsOneWordOfAStream) {
    std::istringstream is(" explore|broadcast next");
    auto value = status(0);
    is >> value;
    EXPECT_EQ(static_cast<int>(value), 0x14);
}

TEST(ReceivedStatus, HasAHexFormOfTwoDigits) { EXPECT_EQ(ReceivedStatus::toHex(status(0x4B)), "4b"); }

TEST(CommandClassMsg, HasTheDefaultsOfItsMembers) {
    EXPECT_EQ(ownMembers<TMessage>(CommandClassMsg()),
              R"(,"sourceAddr_":{"homeId_":0,"nodeId_":0},"rxStatus_":"none|singlecast","command_":null})");
    EXPECT_EQ(CommandClassMsg().role(), MessageRole::none);
}

TEST(CommandClassMsg, TakesItsMembersAndItsRole) {
    auto const command = boost::make_shared<RawCommand>(Bytes{0x20});
    CommandClassMsg const message(ZwaveAddress(1, 2), status(0x42), command, MessageRole::report);
    EXPECT_EQ(message.sourceAddr(), ZwaveAddress(1, 2));
    EXPECT_EQ(static_cast<int>(message.rxStatus()), 0x42);
    EXPECT_EQ(message.command().get(), command.get());
    EXPECT_EQ(message.role(), MessageRole::report);
}

TEST(CommandClassMsg, TakesTheHomeIdOfTheDaemonsController) {
    auto const before = Zwaved::instance().controller();
    Zwaved::instance().controller(Controller(0xC0FFEE01, 1));
    auto const message = CommandClassMsg::create(9, status(1), nullptr, MessageRole::report);
    Zwaved::instance().controller(before);
    EXPECT_EQ(message->sourceAddr(), ZwaveAddress(0xC0FFEE01, 9));
    EXPECT_EQ(static_cast<int>(message->rxStatus()), 1);
    EXPECT_FALSE(message->command());
    EXPECT_EQ(message->role(), MessageRole::report);
}

TEST(CommandClassMsg, ReadsEveryMemberOfItsGoldenText) {
    auto const message = readBack<CommandClassMsg>(golden("CommandClassMsg"));
    EXPECT_EQ(message->sourceAddr(), ZwaveAddress(0xC0FFEE01, 5));
    EXPECT_EQ(static_cast<int>(message->rxStatus()), 0x49);
    ASSERT_TRUE(message->command());
    EXPECT_EQ(message->command()->bytes(), (Bytes{0x25, 0x01, 0xFF}));
}

TEST(CommandClassMsg, WritesStatusZeroAsNoneAndSinglecastAndReadsItBack) {
    auto const text = toText(message({0x20}));
    EXPECT_NE(text.find(R"("rxStatus_":"none|singlecast")"), std::string::npos);
    EXPECT_EQ(static_cast<int>(readBack<CommandClassMsg>(text)->rxStatus()), 0);
}

TEST(CommandClassMsg, RefusesToWriteAStatusWithAnUnknownBit) {
    auto const invalid = message({0x20}, 0x20);
    EXPECT_EQ(errorOf([&] { toText(invalid); }), "InvalidEnumError: invalid ReceivedStatus value 32");
    EXPECT_EQ(errorOf([&] { shown(invalid); }), "InvalidEnumError: invalid ReceivedStatus value 32");
    std::ostringstream os;
    EXPECT_EQ(errorOf([&] { invalid.print(os); }), "InvalidEnumError: invalid ReceivedStatus value 32");
}

TEST(CommandClassMsg, NamesReceiveStatusInTheErrorOfReading) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::CommandClassMsg","rxStatus_":"lowPower|routedBusy"})"),
              "InvalidEnumError: rxStatus_: invalid ReceiveStatus text \"lowPower|routedBusy\"");
}

TEST(CommandClassMsg, HasNoCommandWhenTheTextHoldsAnObjectOfAnotherClass) {
    auto const message =
        readBack<CommandClassMsg>(R"({"__name__":"zorv::CommandClassMsg","command_":{"__name__":"zorv::Device"}})");
    EXPECT_FALSE(message->command());
}

TEST(CommandClassMsg, ShowsSourceStatusAndBytes) {
    EXPECT_EQ(shown(message({0x25, 0x03, 0xFF}, 0x04)), (StringVecVec{{"Application Data: "},
                                                                      {"Source address:", "c0ffee01:5"},
                                                                      {"Received status:", "none|broadcast"},
                                                                      {"Data:", "00: 25 03 ff"}}));
}

TEST(CommandClassMsg, ShowsNineBytesInTwoRows) {
    auto const rows = shown(message({1, 2, 3, 4, 5, 6, 7, 8, 9}));
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(rows[3], (std::vector<std::string>{"Data:", "00: 01 02 03 04 05 06 07 08"}));
    EXPECT_EQ(rows[4], (std::vector<std::string>{"", "08: 09"}));
}

TEST(CommandClassMsg, ShowsEightAndSixteenBytesWithoutAnEmptyRow) {
    auto const eight = shown(message(Bytes(8, 0xAA)));
    ASSERT_EQ(eight.size(), 4U);
    EXPECT_EQ(eight[3], (std::vector<std::string>{"Data:", "00: aa aa aa aa aa aa aa aa"}));
    auto const sixteen = shown(message(Bytes(16, 0xAA)));
    ASSERT_EQ(sixteen.size(), 5U);
    EXPECT_EQ(sixteen[3], (std::vector<std::string>{"Data:", "00: aa aa aa aa aa aa aa aa"}));
    EXPECT_EQ(sixteen[4], (std::vector<std::string>{"", "08: aa aa aa aa aa aa aa aa"}));
}

TEST(CommandClassMsg, ShowsACommandWithoutBytesAsOneRow) {
    EXPECT_EQ(shown(message({})).back(), (std::vector<std::string>{"Data:", "00:"}));
}

} // namespace
} // namespace zorv
