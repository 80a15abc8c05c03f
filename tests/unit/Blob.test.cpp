// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/SerializerError.h"
#include "tests/support/LogCapture.h"
#include "tests/support/errorOf.h"
#include "tests/support/golden.h"
#include "tests/support/wire.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

namespace zorv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Blob, IsMadeEmptyFromANameAndAnOffset) {
    Blob const blob("routes", 4096);
    EXPECT_EQ(blob.name(), "routes");
    EXPECT_EQ(blob.offset(), 4096U);
    EXPECT_EQ(blob.size(), 0U);
    EXPECT_EQ(blob.crc(), 0U);
    EXPECT_EQ(blob.contents(), "");
    EXPECT_EQ(blob.version(), 1);
}

TEST(Blob, TakesItsMembersWithoutCheckingThem) {
    LogCapture const log;
    Blob const blob("routes", 1, 2, 3, "no base64");
    EXPECT_EQ(blob.name(), "routes");
    EXPECT_EQ(blob.offset(), 1U);
    EXPECT_EQ(blob.size(), 2U);
    EXPECT_EQ(blob.crc(), 3U);
    EXPECT_EQ(blob.contents(), "no base64");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Blob, ChecksumOfTheNineDigitsIsTheStandardOne) {
    EXPECT_EQ(Blob("", 0, 0, 0, "123456789").computeCrc(), 0xCBF43926U);
}

TEST(Blob, ChecksumOfNoContentsIsZero) { EXPECT_EQ(Blob("", 0, 0, 7, "").computeCrc(), 0U); }

TEST(Blob, StoresBytesAsBase64WithTheChecksumOfTheText) {
    Blob blob("routes", 4096);
    EXPECT_FALSE(blob.setContents({1, 2, 3, 4}));
    EXPECT_EQ(blob.size(), 4U);
    EXPECT_EQ(blob.contents(), "AQIDBA==");
    EXPECT_EQ(blob.crc(), 4065733082U);
    EXPECT_TRUE(blob.checkCrc());
    EXPECT_EQ(blob.getContents(), (OctetVec{1, 2, 3, 4}));
}

TEST(Blob, ReplacesTheBytesThatItHeld) {
    Blob blob("routes", 4096, 99, 98, "old");
    EXPECT_FALSE(blob.setContents({'q', 'u', 'i', 'l', 'l', 'e', 't', 0, 255}));
    EXPECT_EQ(blob.size(), 9U);
    EXPECT_EQ(blob.contents(), "cXVpbGxldAD/");
    EXPECT_EQ(blob.crc(), 4039424006U);
}

TEST(Blob, OfNoBytesHasNoContentsAndLogsNothing) {
    Blob blob("routes", 0, 4, 4065733082U, "AQIDBA==");
    LogCapture const log;
    EXPECT_FALSE(blob.setContents({}));
    EXPECT_EQ(blob.size(), 0U);
    EXPECT_EQ(blob.contents(), "");
    EXPECT_EQ(blob.crc(), 0U);
    EXPECT_TRUE(blob.checkCrc());
    EXPECT_THAT(blob.getContents(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Blob, KeepsBytesOfAMegabyte) {
    OctetVec bytes(1U << 20U);
    for (std::size_t i = 0; i < bytes.size(); ++i) { bytes[i] = static_cast<unsigned char>((i * i) >> 8U); }
    Blob blob("eeprom", 0);
    EXPECT_FALSE(blob.setContents(bytes));
    EXPECT_EQ(blob.size(), 1U << 20U);
    EXPECT_EQ(blob.contents().size(), 1398104U);
    EXPECT_TRUE(blob.getContents() == bytes);
}

TEST(Blob, WithAChangedCharacterIsCorruptAndGivesNoBytesWithBothLogLines) {
    Blob const blob("routes", 4096, 4, 4065733082U, "AQIDBQ=="); // the text of other bytes
    LogCapture log;
    EXPECT_FALSE(blob.checkCrc());
    EXPECT_THAT(log.lines(), ElementsAre("WARN ManageNvmMsg::checkCrc: crc mismatch, the blob routes is corrupt"));
    log.clear();
    EXPECT_THAT(blob.getContents(), IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre("WARN ManageNvmMsg::checkCrc: crc mismatch, the blob routes is corrupt",
                                         "DEBUG ManageNvmMsg::getContents: cannot decode base64 vector"));
}

TEST(Blob, WithAnyNameIsWarnedOfOnOneLine) {
    LogCapture const log;
    Blob("a\x1b\n\xc2\x9b", 0, 0, 1, "").checkCrc();
    EXPECT_THAT(log.lines(),
                ElementsAre("WARN ManageNvmMsg::checkCrc: crc mismatch, the blob a\\x1b\\x0a\\xc2\\x9b is corrupt"));
}

TEST(Blob, ThatIsNotBase64ButHasAGoodChecksumGivesNoBytesWithOneLogLine) {
    Blob const blob("digits", 0, 9, 0xCBF43926U, "123456789");
    LogCapture const log;
    EXPECT_TRUE(blob.checkCrc());
    EXPECT_THAT(blob.getContents(), IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre("DEBUG ManageNvmMsg::getContents: cannot decode base64 vector"));
}

TEST(Blob, WithTheChecksumOfItsBytesInsteadOfItsTextIsCorrupt) {
    auto const bytesCrc = 3057449933U; // of 1, 2, 3, 4
    EXPECT_FALSE(Blob("routes", 0, 4, bytesCrc, "AQIDBA==").checkCrc());
}

TEST(Blob, LogsFromTheModuleOfItsMessage) {
    LogCapture const log;
    Blob("routes", 0, 4, 1, "AQIDBA==").checkCrc();
    ASSERT_EQ(log.events().size(), 1U);
    EXPECT_EQ(log.events()[0].file, "zwave/libquillet/ManageNvmMsg");
    EXPECT_EQ(log.events()[0].function, "checkCrc");
    EXPECT_GT(log.events()[0].line, 0);
}

TEST(Blob, IsReadFromItsGoldenTextAndWrittenBackTheSame) {
    auto const blob = readBack<Blob>(golden("Blob"));
    ASSERT_TRUE(blob);
    EXPECT_EQ(blob->version(), 2);
    EXPECT_EQ(blob->name(), "routes");
    EXPECT_EQ(blob->offset(), 4096U);
    EXPECT_EQ(blob->size(), 4U);
    EXPECT_EQ(blob->crc(), 4065733082U);
    EXPECT_EQ(blob->contents(), "AQIDBA==");
    EXPECT_TRUE(blob->checkCrc());
    EXPECT_EQ(toText(*blob), golden("Blob"));
}

TEST(Blob, WritesItsFrameAroundTheBaseAndItsMembersInOrder) {
    EXPECT_EQ(toText(Blob("a", 1, 2, 3, "b")),
              R"({"__name__":"zorv::Blob","__bases__":[{"__name__":"zorv::Serializable","__bases__":[],"version_":1}],)"
              R"("name_":"a","offset_":1,"size_":2,"crc_":3,"contents_":"b"})");
}

TEST(Blob, IsReadWithAnyChecksumAndFoundCorruptOnlyWhenChecked) {
    LogCapture const log;
    auto const blob = readBack<Blob>(R"({"__name__":"zorv::Blob","name_":"routes","crc_":1,"contents_":"AQIDBA=="})");
    ASSERT_TRUE(blob);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_FALSE(blob->checkCrc());
}

TEST(Blob, KeepsTheDefaultOfAnAbsentMember) {
    auto const blob = readBlank<Blob>();
    ASSERT_TRUE(blob);
    EXPECT_EQ(toText(*blob), toText(Blob("", 0)));
}

TEST(Blob, HoldsTheLargestNumbers) {
    Blob const blob("a", 4294967295U, 4294967294U, 4294967293U, "");
    auto const again = readBack<Blob>(toText(blob));
    ASSERT_TRUE(again);
    EXPECT_EQ(again->offset(), 4294967295U);
    EXPECT_EQ(again->size(), 4294967294U);
    EXPECT_EQ(again->crc(), 4294967293U);
}

TEST(Blob, CannotBeReadFromMembersOfTheWrongType) {
    auto const errorOfMember = [](std::string const& member) {
        return errorOf([&] { readBack<Blob>(R"({"__name__":"zorv::Blob",)" + member + "}"); });
    };
    EXPECT_EQ(errorOfMember(R"("name_":1)"), "SerializerError: name_: expected string, got int");
    EXPECT_EQ(errorOfMember(R"("offset_":"1")"), "SerializerError: offset_: expected unsigned int, got string");
    EXPECT_EQ(errorOfMember(R"("size_":-1)"), "SerializerError: size_: expected unsigned int, got -1");
    EXPECT_EQ(errorOfMember(R"("crc_":4294967296)"), "SerializerError: crc_: expected unsigned int, got 4294967296");
    EXPECT_EQ(errorOfMember(R"("contents_":null)"), "SerializerError: contents_: expected string, got null");
}

TEST(Blob, FactoryFillsTheGivenObject) {
    Blob blob("routes", 4096);
    Serializer s(R"({"__name__":"zorv::Blob","name_":"nodes"})");
    EXPECT_EQ(Blob::serialFactory(s, &blob), &blob);
    EXPECT_EQ(blob.name(), "nodes");
    EXPECT_EQ(blob.offset(), 4096U);
}

TEST(Blob, FactoryMakesANewObjectWhereNoneIsGiven) {
    Serializer s(golden("Blob"));
    std::unique_ptr<Serializable> const object(Blob::serialFactory(s, nullptr));
    auto const* const blob = dynamic_cast<Blob const*>(object.get());
    ASSERT_NE(blob, nullptr);
    EXPECT_EQ(blob->name(), "routes");
}

TEST(Blob, PrintsItsWireText) {
    auto const blob = readBack<Blob>(golden("Blob"));
    std::ostringstream os;
    blob->print(os);
    EXPECT_EQ(os.str(), golden("Blob"));
}

} // namespace
} // namespace zorv
