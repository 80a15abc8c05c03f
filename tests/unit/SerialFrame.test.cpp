// SPDX-License-Identifier: Apache-2.0
#include "zwave/libserialapi/Frame.h"
#include "zwave/libserialapi/FrameReader.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace zorv::serialapi {

namespace {

using Kind = FrameReader::Kind;

TimePoint const start{};

/// What the reader finds in bytes that all come at one time.
std::vector<FrameReader::Item> push(FrameReader& reader, Bytes const& bytes, TimePoint now = start) {
    std::vector<FrameReader::Item> items;
    for (auto const byte : bytes) {
        if (auto item = reader.push(byte, now)) { items.push_back(std::move(*item)); }
    }
    return items;
}

std::string complaint(Bytes const& bytes) {
    std::string why;
    return Frame::decode(bytes, why) ? "none" : why;
}

Bytes const getVersion{0x01, 0x03, 0x00, 0x15, 0xE9};
Bytes const setTimeouts{0x01, 0x05, 0x00, 0x06, 0x64, 0x0F, 0x97};

} // namespace

TEST(SerialFrame, EncodesARequestWithoutParameters) {
    EXPECT_EQ((Frame{FrameType::request, 0x15, {}}.encode()), getVersion);
}

TEST(SerialFrame, EncodesAResponseWithParameters) {
    EXPECT_EQ((Frame{FrameType::response, 0x20, {0xC0, 0xFF, 0xEE, 0x01, 0x01}}.encode()),
              (Bytes{0x01, 0x08, 0x01, 0x20, 0xC0, 0xFF, 0xEE, 0x01, 0x01, 0x07}));
}

TEST(SerialFrame, DecodesTypeFunctionAndParameters) {
    std::string why;
    EXPECT_EQ(Frame::decode(setTimeouts, why), (Frame{FrameType::request, 0x06, {0x64, 0x0F}}));
}

TEST(SerialFrame, HoldsUpTo252Parameters) {
    Frame frame{FrameType::request, 0x2B, Bytes(252, 0xAA)};
    EXPECT_EQ(frame.encode().size(), 257U);
    frame.parameters.push_back(0);
    EXPECT_THROW(frame.encode(), std::length_error);
}

TEST(SerialFrame, SaysWhatIsWrongWithBytes) {
    EXPECT_EQ(complaint({}), "does not begin with 01");
    EXPECT_EQ(complaint({0x02, 0x03, 0x00, 0x15, 0xE9}), "does not begin with 01");
    EXPECT_EQ(complaint({0x01, 0x03, 0x00, 0x15}), "too short for a frame");
    EXPECT_EQ(complaint({0x01, 0x02, 0x00, 0x15, 0xE8}), "length byte below 3");
    EXPECT_EQ(complaint({0x01, 0x04, 0x00, 0x15, 0xE9}), "length byte does not fit the number of bytes");
    EXPECT_EQ(complaint({0x01, 0x03, 0x00, 0x15, 0xE9, 0x00}), "length byte does not fit the number of bytes");
    EXPECT_EQ(complaint({0x01, 0x03, 0x02, 0x15, 0xEB}), "reserved frame type");
    EXPECT_EQ(complaint({0x01, 0x03, 0x00, 0x15, 0xE8}), "wrong checksum");
}

TEST(SerialFrameReader, FindsFramesAndControlBytesInOneStream) {
    FrameReader reader;
    Bytes bytes{0x06};
    bytes.insert(bytes.end(), getVersion.begin(), getVersion.end());
    bytes.insert(bytes.end(), {0x15, 0x18});
    auto const items = push(reader, bytes);
    ASSERT_EQ(items.size(), 4U);
    EXPECT_EQ(items[0].kind, Kind::ack);
    EXPECT_EQ(items[1].kind, Kind::data);
    EXPECT_EQ(items[1].frame.function, 0x15);
    EXPECT_EQ(items[2].kind, Kind::nak);
    EXPECT_EQ(items[3].kind, Kind::can);
    EXPECT_EQ(reader.skippedBytes(), 0U);
}

TEST(SerialFrameReader, TakesControlBytesWithinAFrameForItsContent) {
    FrameReader reader;
    auto const items = push(reader, Frame{FrameType::request, 0x18, {0x01, 0x06, 0x15, 0x18}}.encode());
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].frame.parameters, (Bytes{0x01, 0x06, 0x15, 0x18}));
}

TEST(SerialFrameReader, SkipsWhatStartsNothing) {
    FrameReader reader;
    EXPECT_TRUE(push(reader, {0x00, 0x0D, 0x0A, 0xFF, 0x42}).empty());
    EXPECT_EQ(reader.skippedBytes(), 5U);
    EXPECT_EQ(push(reader, getVersion).size(), 1U);
}

TEST(SerialFrameReader, TellsABadChecksumAndFindsTheNextFrame) {
    FrameReader reader;
    auto bad = getVersion;
    bad[4] = 0xE8;
    auto items = push(reader, bad);
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].kind, Kind::badChecksum);
    EXPECT_EQ(reader.skippedBytes(), 5U);
    items = push(reader, getVersion);
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].kind, Kind::data);
}

TEST(SerialFrameReader, GivesUpAnImpossibleLengthAtOnce) {
    FrameReader reader;
    EXPECT_TRUE(push(reader, {0x01, 0x02}).empty());
    EXPECT_FALSE(reader.isInsideFrame());
    EXPECT_EQ(push(reader, getVersion).size(), 1U);
}

TEST(SerialFrameReader, GivesUpAReservedTypeAtOnce) {
    FrameReader reader;
    EXPECT_TRUE(push(reader, {0x01, 0x03, 0x02}).empty());
    EXPECT_FALSE(reader.isInsideFrame());
}

TEST(SerialFrameReader, GivesUpWhatDoesNotFitAModulesBuffer) {
    auto const fits = Frame{FrameType::request, 0x2B, Bytes(163)}.encode();
    auto const tooLong = Frame{FrameType::request, 0x2B, Bytes(164)}.encode();
    FrameReader reader(FrameTiming::module());
    EXPECT_EQ(push(reader, fits).size(), 1U);
    EXPECT_TRUE(push(reader, {tooLong[0], tooLong[1]}).empty());
    EXPECT_FALSE(reader.isInsideFrame());
    FrameReader host;
    EXPECT_EQ(push(host, tooLong).size(), 1U);
}

TEST(SerialFrameReader, DropsAFrameThatTakesAHostLongerThan1500Milliseconds) {
    FrameReader reader;
    push(reader, {0x01, 0x03, 0x00}, start);
    EXPECT_EQ(reader.deadline(), start + Milliseconds(1500));
    push(reader, {0x15}, start + Milliseconds(1000));
    EXPECT_FALSE(reader.tick(start + Milliseconds(1499)));
    EXPECT_TRUE(reader.tick(start + Milliseconds(1500)));
    EXPECT_EQ(reader.timeouts(), 1U);
    EXPECT_EQ(reader.deadline(), std::nullopt);
    EXPECT_TRUE(push(reader, {0xE9}, start + Milliseconds(1501)).empty());
}

TEST(SerialFrameReader, DropsAFrameOverdueWhenItsNextByteComesBeforeAnyTick) {
    FrameReader reader;
    push(reader, {0x01, 0x03, 0x00, 0x15}, start);
    EXPECT_EQ(push(reader, getVersion, start + Milliseconds(1500)).size(), 1U);
    EXPECT_EQ(reader.timeouts(), 1U);
}

TEST(SerialFrameReader, DropsAFrameThatPausesForAModuleLongerThan150Milliseconds) {
    FrameReader reader(FrameTiming::module());
    push(reader, {0x01, 0x05, 0x00}, start);
    push(reader, {0x06}, start + Milliseconds(149));
    push(reader, {0x64}, start + Milliseconds(298));
    EXPECT_TRUE(reader.isInsideFrame());
    EXPECT_EQ(reader.deadline(), start + Milliseconds(448));
    EXPECT_TRUE(reader.tick(start + Milliseconds(448)));
    EXPECT_FALSE(reader.isInsideFrame());
}

TEST(SerialFrameReader, FindsAFrameAfterAnyTwoBytesOfRubbish) {
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            FrameReader reader;
            push(reader, {static_cast<Byte>(a), static_cast<Byte>(b)}, start);
            auto const items = push(reader, getVersion, start + Milliseconds(1500));
            ASSERT_FALSE(items.empty()) << a << ' ' << b;
            ASSERT_EQ(items.back().frame.function, 0x15) << a << ' ' << b;
        }
    }
}

} // namespace zorv::serialapi
