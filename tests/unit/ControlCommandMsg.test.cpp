// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ControlCommandMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"

#include <stdexcept>

namespace zorv {
namespace {

using Bytes = std::vector<unsigned char>;

std::string sizeError(Bytes const& data) {
    return errorOf([&] { ControlCommandMsg(data, MessageRole::request); });
}

TEST(ControlCommandMsg, TakesAFrameOfTwoBytes) {
    ControlCommandMsg const message(Bytes{0, 0x15}, MessageRole::request);
    EXPECT_EQ(message.role(), MessageRole::request);
    EXPECT_EQ(ownMembers<TMessage>(message), R"(,"data_":[0,21]})");
}

TEST(ControlCommandMsg, RefusesAFrameOfOneByte) {
    EXPECT_EQ(sizeError(Bytes{1}), "TransportError: invalid minimum control command size");
}

TEST(ControlCommandMsg, RefusesAnEmptyFrame) {
    EXPECT_EQ(sizeError(Bytes()), "TransportError: invalid minimum control command size");
}

TEST(ControlCommandMsg, IsEmptyByDefault) { EXPECT_EQ(ownMembers<TMessage>(ControlCommandMsg()), R"(,"data_":[]})"); }

TEST(ControlCommandMsg, ReadsAFrameOfOneByteButRefusesToShowIt) {
    auto const message = readBack<ControlCommandMsg>(R"({"__name__":"zorv::ControlCommandMsg","data_":[1]})");
    EXPECT_EQ(message->data(), Bytes{1});
    EXPECT_THROW(shown(*message), std::out_of_range);
}

TEST(ControlCommandMsg, RefusesToShowAnEmptyFrame) { EXPECT_THROW(shown(ControlCommandMsg()), std::out_of_range); }

TEST(ControlCommandMsg, ShowsOperationCommandAndBytes) {
    ControlCommandMsg const message(Bytes{0x01, 0x13, 0xFE}, MessageRole::response);
    EXPECT_EQ(shown(message), (StringVecVec{{"Control Command: "},
                                            {"Operation (data[0]):", "response"},
                                            {"Command   (data[1]):", "sendData"},
                                            {"Data:", "00: 01 13 fe"}}));
}

TEST(ControlCommandMsg, ShowsSixteenBytesInTwoRows) {
    ControlCommandMsg const message(Bytes{0, 0x15, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 255},
                                    MessageRole::request);
    auto const rows = shown(message);
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(rows[3], (std::vector<std::string>{"Data:", "00: 00 15 02 03 04 05 06 07"}));
    EXPECT_EQ(rows[4], (std::vector<std::string>{"", "08: 08 09 0a 0b 0c 0d 0e ff"}));
}

TEST(ControlCommandMsg, RefusesToShowAnUnknownOperation) {
    ControlCommandMsg const message(Bytes{2, 0x15}, MessageRole::request);
    EXPECT_EQ(errorOf([&] { shown(message); }), "InvalidEnumError: invalid ControlCommandOp value 2");
}

TEST(ControlCommandMsg, ShowsACommandWithoutANameInHex) {
    EXPECT_EQ(shown(ControlCommandMsg(Bytes{0, 0xFE}, MessageRole::request))[2][1], "0xfe");
}

TEST(ControlCommandMsg, HasTwoOperations) {
    expectTexts<ControlCommandOp::Enum>({"request", "response"});
    EXPECT_EQ(errorOf([] { ControlCommandOp::toEnum("report"); }),
              R"(InvalidEnumError: invalid ControlCommandOp text "report")");
    EXPECT_EQ(toHex(ControlCommandOp::response), "01");
}

TEST(ControlCommandMsg, ShrinksALongerFrameToTheArrayThatIsRead) {
    ControlCommandMsg message(Bytes{1, 2, 3}, MessageRole::request);
    Serializer s(R"({"data_":[9]})");
    message.serialExtract(s);
    EXPECT_EQ(message.data(), Bytes{9});
}

TEST(ControlCommandMsg, RefusesDataThatIsNotAnArrayOfBytes) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::ControlCommandMsg","data_":{"a":1}})"),
              "SyntaxError: expected array, got object");
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::ControlCommandMsg","data_":[1,256]})"),
              "SerializerError: data_[1]: expected unsigned byte, got 256");
}

} // namespace
} // namespace zorv
