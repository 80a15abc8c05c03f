// SPDX-License-Identifier: Apache-2.0
#include "zwave/libserialapi/Bootloader.h"
#include "zwave/libserialapi/XmodemBlock.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>

namespace zorv::serialapi {
namespace {

std::string const menu = "\r\nGecko Bootloader v1.12.1\r\n1. upload gbl\r\n2. run\r\n3. ebl info\r\nBL > ";
std::string const asksForImage = "\r\nbegin upload\r\nC";
std::string const isComplete = "\r\nSerial upload complete\r\n";

Bytes const ack{0x06};
Bytes const nak{0x15};
Bytes const can{0x18};
Bytes const endOfImage{0x04};
Bytes const twoCans{0x18, 0x18};
Bytes const key(char character) { return {static_cast<Byte>(character)}; }

Bytes counting(std::size_t size) {
    Bytes bytes(size);
    std::iota(bytes.begin(), bytes.end(), Byte{0});
    return bytes;
}

/// The block of an image of counting(): 3 is the third.
Bytes block(Byte number, std::size_t size = xmodem::dataSize) {
    auto const image = counting(number * xmodem::dataSize);
    auto const begin = image.begin() + (number - 1) * static_cast<std::ptrdiff_t>(xmodem::dataSize);
    return XmodemBlock{number, Bytes(begin, begin + static_cast<std::ptrdiff_t>(size))}.encode();
}

/// A host that gives an image of 300 bytes, three blocks, to a loader whose part the test plays.
class SerialBootloader : public testing::Test {
protected:
    void SetUp() override { host_.start(now_); }

    /// What the host says to that.
    Bytes says(Bytes const& bytes) {
        host_.receive(bytes, now_);
        return host_.takeOutput();
    }
    Bytes says(std::string const& text) { return says(Bytes(text.begin(), text.end())); }

    Bytes passes(Milliseconds time) {
        now_ += time;
        host_.tick(now_);
        return host_.takeOutput();
    }

    void toUpload() {
        ASSERT_EQ(says(menu), key('1'));
        ASSERT_EQ(says(asksForImage), block(1));
    }

    void toEnd() {
        toUpload();
        ASSERT_EQ(says(ack), block(2));
        ASSERT_EQ(says(ack), block(3, 44));
        ASSERT_EQ(says(ack), endOfImage);
    }

    void expectOver(LoadEnd end, std::optional<std::uint32_t> error = std::nullopt) {
        ASSERT_TRUE(host_.result());
        EXPECT_EQ(host_.result()->end, end);
        EXPECT_EQ(host_.result()->error, error);
        EXPECT_FALSE(host_.deadline());
        EXPECT_TRUE(says(menu).empty());
        EXPECT_TRUE(passes(Milliseconds(100000)).empty());
    }

    Bootloader host_{counting(300)};
    TimePoint now_{};
};

// ---- blocks

TEST(XmodemBlock, IsItsNumberTwiceItsBytesFilledUpAndTheirChecksum) {
    auto const bytes = XmodemBlock{0x12, {1, 2, 3}}.encode();
    ASSERT_EQ(bytes.size(), 133U);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 7), (Bytes{0x01, 0x12, 0xED, 1, 2, 3, 0xFF}));
    EXPECT_EQ(bytes[130], 0xFF);
    EXPECT_EQ(Bytes(bytes.end() - 2, bytes.end()), (Bytes{0x0F, 0xAA}));
}

TEST(XmodemBlock, HasTheChecksumOfTheStandard) { // 0x31C3 over "123456789", as its catalogue says
    boost::crc_optimal<16, 0x1021, 0, 0, false, false> crc;
    std::string const digits = "123456789";
    crc.process_bytes(digits.data(), digits.size());
    EXPECT_EQ(crc.checksum(), 0x31C3U);
}

TEST(XmodemBlock, IsNoneWhereAByteOfItIsWrong) {
    auto const good = block(1);
    ASSERT_TRUE(XmodemBlock::decode(good));
    EXPECT_EQ(XmodemBlock::decode(good)->number, 1);
    EXPECT_EQ(XmodemBlock::decode(good)->data, counting(128));
    for (std::size_t i = 0; i < good.size(); ++i) {
        auto bad = good;
        bad[i] = static_cast<Byte>(bad[i] ^ 0x10U);
        EXPECT_FALSE(XmodemBlock::decode(bad)) << i;
    }
    EXPECT_FALSE(XmodemBlock::decode(Bytes(good.begin(), good.end() - 1)));
}

// ---- the usual way

TEST_F(SerialBootloader, GivesTheImageBlockByBlockAndHasTheModuleStarted) {
    EXPECT_TRUE(says("\r\nGecko").empty());
    EXPECT_EQ(says(menu), key('1'));
    EXPECT_TRUE(says("\r\nbegin upload\r\n").empty());
    EXPECT_EQ(host_.percent(), 0U);
    EXPECT_EQ(says("C"), block(1));
    EXPECT_EQ(says(ack), block(2));
    EXPECT_EQ(host_.percent(), 42U);
    EXPECT_EQ(says(ack), block(3, 44));
    EXPECT_EQ(host_.percent(), 85U);
    EXPECT_EQ(says(ack), endOfImage);
    EXPECT_EQ(host_.percent(), 100U);
    EXPECT_TRUE(says(ack).empty());
    EXPECT_TRUE(says(isComplete).empty());
    EXPECT_FALSE(host_.result());
    EXPECT_EQ(says(menu), key('2'));
    expectOver(LoadEnd::done);
}

TEST_F(SerialBootloader, TakesAnAnswerInAnyPieces) {
    Bytes said;
    for (auto const character : menu + asksForImage) {
        for (auto const byte : says(key(character))) { said.push_back(byte); }
    }
    auto expected = key('1');
    auto const first = block(1);
    expected.insert(expected.end(), first.begin(), first.end());
    EXPECT_EQ(said, expected);
}

TEST_F(SerialBootloader, CountsTheBlocksOnFromZeroAfter255) {
    host_ = Bootloader(Bytes(300 * xmodem::dataSize));
    host_.start(now_);
    says(menu);
    auto said = says(asksForImage);
    for (unsigned int number = 1; number <= 300; ++number) {
        ASSERT_EQ(said.at(1), number & 0xFFU);
        said = says(ack);
    }
    EXPECT_EQ(said, endOfImage);
}

TEST_F(SerialBootloader, SendsNoByteMoreThanAnImageOfWholeBlocksHas) {
    host_ = Bootloader(counting(256));
    host_.start(now_);
    says(menu);
    EXPECT_EQ(says(asksForImage), block(1));
    EXPECT_EQ(says(ack), block(2));
    EXPECT_EQ(says(ack), endOfImage);
}

// ---- the menu

TEST_F(SerialBootloader, PressesAKeyWhereTheMenuDoesNotComeByItself) {
    EXPECT_TRUE(passes(limits::loaderMenuTime - Milliseconds(1)).empty());
    EXPECT_EQ(passes(Milliseconds(1)), key('\r'));
    EXPECT_EQ(says(menu), key('1'));
}

TEST_F(SerialBootloader, GivesUpWhereThereIsNoLoader) {
    for (int i = 0; i < 3; ++i) { EXPECT_EQ(passes(limits::loaderMenuTime), key('\r')) << i; }
    EXPECT_TRUE(passes(limits::loaderMenuTime).empty()); // nothing is to be left
    expectOver(LoadEnd::noLoader);
}

TEST_F(SerialBootloader, TakesAMenuThatComesTwiceForOne) {
    passes(limits::loaderMenuTime);
    EXPECT_EQ(says(menu), key('1'));
    EXPECT_TRUE(says(menu).empty());
    EXPECT_EQ(says(asksForImage), block(1));
}

TEST_F(SerialBootloader, PassesOverTheZeroBehindTheMenu) {
    auto withZero = menu;
    withZero.push_back('\0');
    EXPECT_EQ(says(withZero), key('1'));
    EXPECT_EQ(says(asksForImage), block(1));
}

TEST_F(SerialBootloader, LeavesALoaderThatDoesNotAskForTheImage) {
    says(menu);
    EXPECT_TRUE(passes(limits::loaderMenuTime - Milliseconds(1)).empty());
    EXPECT_EQ(passes(Milliseconds(1)), twoCans);
    EXPECT_EQ(says(menu), key('2'));
    expectOver(LoadEnd::noUpload);
}

TEST_F(SerialBootloader, LeavesALoaderThatDoesNotEvenShowItsMenuAgain) {
    says(menu);
    passes(limits::loaderMenuTime);
    EXPECT_EQ(passes(limits::loaderMenuTime), key('2'));
    expectOver(LoadEnd::noUpload);
}

TEST_F(SerialBootloader, KeepsNoMoreOfALoadersTextThanItNeeds) {
    EXPECT_TRUE(says(std::string(1000000, 'x')).empty());
    EXPECT_EQ(passes(limits::loaderMenuTime), key('\r'));
    EXPECT_EQ(says(menu), key('1'));
}

// ---- blocks that do not arrive

TEST_F(SerialBootloader, RepeatsABlockThatTheLoaderTakesForDamaged) {
    toUpload();
    EXPECT_EQ(says(ack), block(2));
    EXPECT_EQ(says(nak), block(2));
    EXPECT_EQ(says(ack), block(3, 44));
    for (int i = 0; i < 3; ++i) { EXPECT_EQ(says(nak), block(3, 44)) << i; } // a count of its own
    EXPECT_EQ(says(ack), endOfImage);
}

TEST_F(SerialBootloader, BreaksOffWhereABlockIsDamagedAFourthTime) {
    toUpload();
    for (int i = 0; i < 3; ++i) { EXPECT_EQ(says(nak), block(1)) << i; }
    EXPECT_EQ(says(nak), twoCans);
    EXPECT_EQ(says(menu), key('2'));
    expectOver(LoadEnd::notTaken);
}

TEST_F(SerialBootloader, RepeatsABlockThatIsNotAnswered) {
    toUpload();
    EXPECT_TRUE(passes(limits::loaderBlockTime - Milliseconds(1)).empty());
    EXPECT_EQ(passes(Milliseconds(1)), block(1));
    EXPECT_EQ(says(ack), block(2));
}

TEST_F(SerialBootloader, BreaksOffWhereABlockIsNotAnsweredAFourthTime) {
    toUpload();
    for (int i = 0; i < 3; ++i) { EXPECT_EQ(passes(limits::loaderBlockTime), block(1)) << i; }
    EXPECT_EQ(passes(limits::loaderBlockTime), twoCans);
    EXPECT_EQ(passes(limits::loaderMenuTime), key('2'));
    expectOver(LoadEnd::silent);
}

TEST_F(SerialBootloader, SendsTheFirstBlockOnceWhereTheImageIsAskedForAtTheSameTime) {
    toUpload();
    passes(limits::loaderAskTime - Milliseconds(1));
    EXPECT_TRUE(says("CC").empty());
    EXPECT_EQ(says(ack), block(2));
}

TEST_F(SerialBootloader, SendsTheFirstBlockAgainWhereTheImageIsAskedForLater) {
    toUpload();
    passes(limits::loaderAskTime);
    EXPECT_EQ(says("C"), block(1));
    EXPECT_TRUE(says("C").empty());
    EXPECT_EQ(says(ack), block(2));
    passes(limits::loaderAskTime);
    EXPECT_TRUE(says("C").empty());
}

// ---- the end

TEST_F(SerialBootloader, RepeatsTheEndThatIsNotTaken) {
    toEnd();
    EXPECT_EQ(says(nak), endOfImage);
    EXPECT_EQ(passes(limits::loaderBlockTime), endOfImage);
    EXPECT_EQ(passes(limits::loaderBlockTime), endOfImage);
    EXPECT_EQ(passes(limits::loaderBlockTime), twoCans);
    EXPECT_EQ(says(menu), key('2'));
    expectOver(LoadEnd::silent);
}

TEST_F(SerialBootloader, TakesAMenuWithoutTheWordOfSuccessForARefusal) {
    toEnd();
    says(ack);
    EXPECT_EQ(says("\r\nupload failed\r\n" + menu), key('2'));
    expectOver(LoadEnd::refused);
}

TEST_F(SerialBootloader, TakesAnErrorBesideTheWordOfSuccessForARefusal) {
    toEnd();
    says(ack);
    EXPECT_EQ(says(isComplete + "error 0x43\r\n" + menu), key('2'));
    expectOver(LoadEnd::refused, 0x43);
}

TEST_F(SerialBootloader, IsUnfinishedWhereTheLoaderSaysNothingOfTheImage) {
    toEnd();
    says(ack);
    EXPECT_TRUE(passes(limits::loaderVerdictTime - Milliseconds(1)).empty());
    EXPECT_EQ(passes(Milliseconds(1)), key('2'));
    expectOver(LoadEnd::unfinished);
}

TEST_F(SerialBootloader, IsDoneWhereTheMenuIsMissingBehindTheWordOfSuccess) {
    toEnd();
    says(ack);
    says(isComplete);
    EXPECT_EQ(passes(limits::loaderVerdictTime), key('2'));
    expectOver(LoadEnd::done);
}

// ---- refusals

TEST_F(SerialBootloader, ReadsTheErrorOfALoaderThatBreaksOff) {
    toUpload();
    says(ack);
    EXPECT_TRUE(says(can).empty());
    EXPECT_EQ(says("\r\nerror 0x50\r\n" + menu), key('2'));
    expectOver(LoadEnd::refused, 0x50);
}

TEST_F(SerialBootloader, ReadsAnErrorWithAZeroInFrontOfItsDigits) {
    toEnd();
    says(can);
    EXPECT_EQ(says(std::string("error 0x\0"
                               "12\r\n",
                               13) +
                   menu),
              key('2'));
    expectOver(LoadEnd::refused, 0x12);
}

TEST_F(SerialBootloader, IsRefusedWhereTheLoaderBreaksOffWithoutAWord) {
    toUpload();
    says(can);
    EXPECT_EQ(passes(limits::loaderVerdictTime), key('2'));
    expectOver(LoadEnd::refused);
}

// ---- breaking off

TEST_F(SerialBootloader, CanBeCancelledBeforeTheFirstBlock) {
    says(menu);
    host_.cancel(now_);
    EXPECT_EQ(host_.takeOutput(), twoCans);
    EXPECT_EQ(says(menu), key('2'));
    expectOver(LoadEnd::cancelled);
}

TEST_F(SerialBootloader, CanBeCancelledBeforeTheMenu) {
    host_.cancel(now_);
    EXPECT_EQ(host_.takeOutput(), twoCans);
    EXPECT_EQ(says(menu), key('2'));
    expectOver(LoadEnd::cancelled);
}

TEST_F(SerialBootloader, GoesOnOnceABlockIsOut) {
    toUpload();
    host_.cancel(now_);
    EXPECT_TRUE(host_.takeOutput().empty());
    EXPECT_EQ(says(ack), block(2));
}

TEST(SerialBootloaderResult, IsToldInWordsWithItsError) {
    EXPECT_EQ(complaint({LoadEnd::refused, 0x50}), "the loader has refused the image (error 0x50)");
    EXPECT_EQ(complaint({LoadEnd::silent, std::nullopt}), "the loader has fallen silent");
}

} // namespace
} // namespace zorv::serialapi
