// SPDX-License-Identifier: Apache-2.0
#include "tests/testPaths.h"
#include "zwave/libserialapi/functions/FrameDissector.h"
#include "zwave/libserialapi/functions/FunctionList.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace zorv::serialapi {

namespace {

constexpr auto one = NodeIdWidth::one;
constexpr auto two = NodeIdWidth::two;

/// "node=5 data=2502 ..." of a frame's members, and "+" with the bytes that have no name.
std::string shown(Dissection const& dissection) {
    std::string text;
    auto const hex = [](Bytes const& bytes) {
        std::string digits;
        for (auto const byte : bytes) {
            digits += "0123456789abcdef"[byte / 16];
            digits += "0123456789abcdef"[byte % 16];
        }
        return digits;
    };
    for (auto const& value : dissection.members) {
        text += (text.empty() ? "" : " ") + value.name + '=';
        if (value.kind == FieldValue::Kind::number) { text += std::to_string(value.number); }
        if (value.kind == FieldValue::Kind::bytes) { text += hex(value.bytes); }
        if (value.kind == FieldValue::Kind::text) { text += value.text; }
        for (auto const number : value.numbers) { text += std::to_string(number) + ','; }
    }
    return dissection.rest.empty() ? text : text + '+' + hex(dissection.rest);
}

std::string shown(FrameDissector& dissector, Side sender, Frame const& frame) {
    return shown(dissector.dissect(sender, frame));
}

Frame request(Byte function, Bytes parameters) { return {FrameType::request, function, std::move(parameters)}; }
Frame response(Byte function, Bytes parameters) { return {FrameType::response, function, std::move(parameters)}; }

} // namespace

// ---- the same table writes and reads; values that differ show swapped members

TEST(SerialFunctions, WriteASendWithNodeIdsOfOneByte) {
    SendData::Request const send{5, {0x20, 0x01, 0xFF}, 0x25, 0x0A};
    EXPECT_EQ(encodeForm(send, one), (Bytes{0x05, 0x03, 0x20, 0x01, 0xFF, 0x25, 0x0A}));
}

TEST(SerialFunctions, WriteASendWithNodeIdsOfTwoBytes) {
    SendData::Request const send{0x0105, {0x20}, 0x25, 0x0A};
    EXPECT_EQ(encodeForm(send, two), (Bytes{0x01, 0x05, 0x01, 0x20, 0x25, 0x0A}));
}

TEST(SerialFunctions, WriteABridgeSendAsItWasRecorded) {
    SendDataBridge::Request const send{1, 13, {0x00}, 0x25, {}, 0x1F};
    EXPECT_EQ(encodeForm(send, two), (Bytes{0x00, 0x01, 0x00, 0x0D, 0x01, 0x00, 0x25, 0x00, 0x00, 0x00, 0x00, 0x1F}));
}

TEST(SerialFunctions, ReadAFullTransmitReport) {
    Bytes const bytes{0x41, 0x00, 0x00, 0x03, 0x01, 0xB5, 0x7F, 0x7F, 0x7F, 0x7F, 0x01, 0x02, 0x03,
                      0x05, 0x00, 0x00, 0x00, 0x02, 0x04, 0x06, 0x07, 0x0E, 0x9C, 0x7F, 0x7E, 0x7D};
    auto const decoded = decodeForm<TransmitCallback>(bytes, one);
    ASSERT_TRUE(decoded && decoded->form.report && decoded->form.report->route && decoded->form.report->longRange);
    auto const& report = *decoded->form.report;
    EXPECT_EQ(decoded->form.callbackId, 0x41);
    EXPECT_EQ(decoded->form.status, 0);
    EXPECT_EQ(report.ticks, 3);
    EXPECT_EQ(report.route->repeaterCount, 1);
    EXPECT_EQ(report.route->ackRssi, -75);
    EXPECT_EQ(report.route->ackChannel, 1);
    EXPECT_EQ(report.route->channel, 2);
    EXPECT_EQ(report.route->scheme, 3);
    EXPECT_EQ(report.route->repeaters[0], 5);
    EXPECT_EQ(report.route->speed, 2);
    EXPECT_EQ(report.route->attempts, 4);
    EXPECT_EQ(*report.lastFailedLink, (std::array<Byte, 2>{6, 7}));
    EXPECT_EQ(report.longRange->power, 14);
    EXPECT_EQ(report.longRange->noiseFloor, -100);
    EXPECT_EQ(report.longRange->destinationNoiseFloor, 0x7D);
    EXPECT_TRUE(decoded->tail.empty());
}

TEST(SerialFunctions, ReadTheShorterReportsOfOlderModules) {
    auto const bare = decodeForm<TransmitCallback>({0x0A, 0x01}, one);
    ASSERT_TRUE(bare);
    EXPECT_FALSE(bare->form.report);
    auto const ticks = decodeForm<TransmitCallback>({0x0A, 0x01, 0x01, 0xA6}, one);
    ASSERT_TRUE(ticks && ticks->form.report);
    EXPECT_EQ(ticks->form.report->ticks, 422);
    EXPECT_FALSE(ticks->form.report->route);
}

TEST(SerialFunctions, KeepBytesThatNobodyKnows) {
    auto const decoded = decodeForm<StatusCallback>({0x50, 0x00, 0xAA, 0xBB}, one);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->tail, (Bytes{0xAA, 0xBB}));
    EXPECT_EQ(encodeForm(decoded->form, one, decoded->tail), (Bytes{0x50, 0x00, 0xAA, 0xBB}));
}

TEST(SerialFunctions, RefuseParametersThatEndBeforeTheirOwnCount) {
    EXPECT_FALSE(decodeForm<ApplicationCommandHandler::Callback>({0x00, 0x05, 0x04, 0x20, 0x03}, one));
    EXPECT_FALSE(decodeForm<SendData::Request>({}, one));
    EXPECT_FALSE(decodeForm<SendData::Request>({0x05}, two));
}

TEST(SerialFunctions, ReadTheNodesOfAMask) {
    auto const decoded = decodeForm<GetInitData::Response>({0x05, 0x08, 0x02, 0x29, 0x01, 0x07, 0x03}, one);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->form.nodes.numbers(), (std::vector<NodeId>{1, 4, 6, 9}));
    EXPECT_TRUE(decoded->form.nodes.contains(9));
    EXPECT_FALSE(decoded->form.nodes.contains(0));
    EXPECT_FALSE(decoded->form.nodes.contains(300));
    EXPECT_EQ(decoded->form.chipType, 7);
    EXPECT_EQ(decoded->form.chipVersion, 3);
}

TEST(SerialFunctions, BuildAMaskNodeByNode) {
    BitMask mask;
    for (unsigned int const node : {1U, 4U, 6U, 9U}) { mask.insert(node); }
    EXPECT_EQ(mask.bytes, (Bytes{0x29, 0x01}));
}

TEST(SerialFunctions, ReadBothSessionsOfTheMemoryAlikeButForTheOffset) {
    auto const small = decodeForm<NvmBackupRestore::Request>({0x02, 0x02, 0x01, 0x02, 0xAA, 0xBB}, one);
    auto const large =
        decodeForm<NvmExtendedBackupRestore::Request>({0x02, 0x02, 0x00, 0x01, 0x02, 0x03, 0xAA, 0xBB}, one);
    ASSERT_TRUE(small && large);
    EXPECT_EQ(small->form.offset, 0x0102);
    EXPECT_EQ(large->form.offset, 0x00010203U);
    EXPECT_EQ(small->form.data, large->form.data);
}

// ---- any frame

TEST(SerialFunctions, ShowAFrameByItsTable) {
    FrameDissector dissector;
    EXPECT_EQ(shown(dissector, Side::host, request(0x13, {0x05, 0x02, 0x25, 0x02, 0x25, 0x0A})),
              "node=5 data=2502 options=37 callbackId=10");
    EXPECT_EQ(shown(dissector, Side::module, request(0x4A, {0x0A, 0x03, 0x07, 0x04, 0x04, 0x10, 0x01, 0x25})),
              "callbackId=10 status=3 node=7 basic=4 generic=16 specific=1 commandClasses=25");
    EXPECT_EQ(shown(dissector, Side::module, request(0x4A, {0x0A, 0x01, 0x00, 0x00})), "callbackId=10 status=1 node=0");
    EXPECT_EQ(shown(dissector, Side::module, response(0x0B, {0x13, 0x00, 0x0A, 0xFF, 0xFE})),
              "command=19 power=10 measured=-2");
}

TEST(SerialFunctions, ShowEachStateOfAnUpdateByItsOwnMembers) {
    FrameDissector dissector;
    EXPECT_EQ(shown(dissector, Side::module, request(0x49, {0x81, 0x00, 0x00})), "state=129 node=0 length=0");
    EXPECT_EQ(shown(dissector, Side::module, request(0x49, {0x84, 0x05, 0x04, 0x04, 0x10, 0x01, 0x25})),
              "state=132 node=5 basic=4 generic=16 specific=1 commandClasses=25");
    EXPECT_EQ(shown(dissector, Side::module,
                    request(0x49, {0x85, 0x00, 0x09, 0x01, 0x02, 0x03, 0x04, 0x01, 0x04, 0x10, 0x01, 0x5E})),
              "state=133 node=0 length=9 homeId=16909060 classCount=1 basic=4 generic=16 specific=1 commandClasses=5e");
    EXPECT_EQ(shown(dissector, Side::module, request(0x49, {0x86, 0x05, 0x05, 0x10, 0x01, 0x02, 0x03, 0x04})),
              "state=134 node=5 length=5 status=16 homeId=16909060");
}

TEST(SerialFunctions, LeaveAFrameThatDoesNotFitItsTableAsItIs) {
    FrameDissector dissector;
    auto const dissection = dissector.dissect(Side::module, request(0x04, {0x00, 0x05, 0x09, 0x20}));
    EXPECT_TRUE(dissection.hasTable);
    EXPECT_FALSE(dissection.fits);
    EXPECT_EQ(shown(dissection), "+00050920");
}

TEST(SerialFunctions, NameAFunctionWithoutATableByItsId) {
    FrameDissector dissector;
    auto const dissection = dissector.dissect(Side::host, request(0xF2, {0x01}));
    EXPECT_EQ(dissection.function, "0xf2");
    EXPECT_FALSE(dissection.hasTable);
    EXPECT_EQ(shown(dissection), "+01");
}

TEST(SerialFunctions, FollowTheWidthOfNodeIdsThatHostAndModuleAgreeOn) {
    FrameDissector dissector;
    dissector.dissect(Side::host, request(0x0B, {0x80, 0x02}));
    EXPECT_EQ(dissector.width(), one);
    dissector.dissect(Side::module, response(0x0B, {0x80, 0x01}));
    EXPECT_EQ(dissector.width(), two);
    EXPECT_EQ(shown(dissector, Side::module, response(0x56, {0x01, 0x02})), "node=258");
    dissector.dissect(Side::host, request(0x08, {}));
    EXPECT_EQ(dissector.width(), one);
}

TEST(SerialFunctions, StayWithOneByteWhereTheModuleRefusesTwo) {
    FrameDissector dissector;
    dissector.dissect(Side::host, request(0x0B, {0x80, 0x02}));
    dissector.dissect(Side::module, response(0x0B, {0x80, 0x00}));
    EXPECT_EQ(dissector.width(), one);
}

TEST(SerialFunctions, GoBackToOneByteWhenTheHostAsksForIt) {
    FrameDissector dissector;
    dissector.dissect(Side::module, response(0x0B, {0x80, 0x01}));
    EXPECT_EQ(dissector.width(), two);
    dissector.dissect(Side::host, request(0x0B, {0x80, 0x01}));
    dissector.dissect(Side::module, response(0x0B, {0x80, 0x01}));
    EXPECT_EQ(dissector.width(), one);
}

TEST(SerialFunctions, TellTheWidthFromAFrameWhereTheAgreementWasNotHeard) {
    FrameDissector dissector;
    EXPECT_EQ(
        shown(dissector, Side::module,
              request(0xA8, {0x00, 0x00, 0x01, 0x00, 0x1A, 0x03, 0x20, 0x01, 0x00, 0x00, 0xB1, 0x00, 0x7F, 0x7F})),
        "status=0 destination=1 source=26 data=200100 multicast= rssi=-79 securityKey=0 sourcePower=127 "
        "sourceNoiseFloor=127");
    EXPECT_EQ(dissector.width(), two);
}

TEST(SerialFunctions, EncodeAnyFrameBackToItsBytes) {
    std::mt19937 random(20260);
    auto const below = [&random](unsigned int limit) { return random() % limit; };
    int fitting = 0;
    for (int round = 0; round < 100; ++round) {
        FrameDissector dissector;
        for (unsigned int function = 0; function < 256; ++function) {
            Frame frame{static_cast<FrameType>(below(2)), static_cast<Byte>(function), Bytes(below(48))};
            for (auto& byte : frame.parameters) { byte = static_cast<Byte>(below(3) == 0 ? below(256) : below(8)); }
            auto const dissection = dissector.dissect(below(2) == 0 ? Side::host : Side::module, frame);
            ASSERT_EQ(dissection.encoded, frame) << function << ' ' << shown(dissection);
            fitting += dissection.fits ? 1 : 0;
        }
    }
    EXPECT_GT(fitting, 5000);
}

TEST(SerialFunctions, StandInTheDocumentWithAllTheirParameters) {
    std::ifstream file(sourcePath("docs/serial.md"));
    std::string const document{std::istreambuf_iterator<char>(file), {}};
    auto const cell = [](std::optional<FormDescriptor> const& form) {
        if (!form) { return std::string(" |"); }
        std::string names;
        for (auto const& name : form->memberNames()) { names += (names.empty() ? "" : ", ") + name; }
        return ' ' + (names.empty() ? "none" : names) + " |";
    };
    for (auto const& function : describeFunctions()) {
        std::string id = "0x";
        id += "0123456789abcdef"[function.id / 16];
        id += "0123456789abcdef"[function.id % 16];
        auto const row = "\n| " + id + " | " + function.name + " |" + cell(function.request) + cell(function.response) +
                         cell(function.callback) + '\n';
        EXPECT_NE(document.find(row), std::string::npos) << row;
    }
}

TEST(SerialFunctions, AreFoundById) {
    ASSERT_NE(findFunction(0x13), nullptr);
    EXPECT_STREQ(findFunction(0x13)->name, "SendData");
    EXPECT_EQ(findFunction(0x00), nullptr);
    EXPECT_EQ(findFunction(0xFF), nullptr);
    EXPECT_EQ(functionName(0x9D), "0x9d");
}

} // namespace zorv::serialapi
