// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/PingMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/golden.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zorv {
namespace {

using testing::ElementsAre;

using Row = std::vector<std::string>;

ZwaveAddress const node5(0xC0FFEE01, 5);
TimeStamp const noon(1769860800000); // 2026-01-31T12:00:00.000Z

TEST(PingMsg, HasNoDestinationAndNoLatencyByDefault) {
    PingMsg const ping;
    EXPECT_EQ(ping.destination(), ZwaveAddress(0, 0));
    EXPECT_EQ(ping.latencyMs(), 0U);
    EXPECT_EQ(static_cast<int>(ping.result()), 0);
}

TEST(PingMsg, RequestNamesItsDestination) {
    auto const ping = PingMsg::create(node5);
    EXPECT_EQ(ping->destination(), node5);
    EXPECT_EQ(ping->latencyMs(), 0U);
    EXPECT_EQ(static_cast<int>(ping->result()), 0);
}

TEST(PingMsg, ReadsEveryMemberOfItsGoldenText) {
    auto const ping = readBack<PingMsg>(golden("PingMsg"));
    EXPECT_EQ(ping->destination(), node5);
    EXPECT_EQ(ping->latencyMs(), 250U);
    EXPECT_EQ(ping->result(), ZResult::success);
}

TEST(PingMsg, KeepsDestinationAndLatencyOnTheWireButNotCountTimeAndHeader) {
    auto const ping = PingMsg::create(PingMsg::create(node5), ZResult::success, 250);
    ping->header(true);
    ping->count(7);
    ping->time(noon);

    auto const rebuilt = readBack<PingMsg>(toText(*ping));
    EXPECT_EQ(rebuilt->destination(), node5);
    EXPECT_EQ(rebuilt->latencyMs(), 250U);
    EXPECT_THAT(shown(*rebuilt), ElementsAre(Row{"0", "1970-01-01T00:00:00.000Z", "c0ffee01:5", "success", "250"}));
}

TEST(PingMsg, RefusesToRespondToANullRequest) {
    EXPECT_EQ(errorOf([] { PingMsg::create(nullptr, ZResult::success, 1); }), "NullPointerError: msg is null");
}

TEST(PingMsg, ResponseKeepsDestinationCountTimeAndHeaderOfItsRequest) {
    auto const request = PingMsg::create(node5);
    request->header(true);
    request->count(7);
    request->time(noon);

    auto const response = PingMsg::create(request, ZResult::timeout, 0);
    EXPECT_EQ(response->destination(), node5);
    EXPECT_THAT(shown(*response), ElementsAre(Row{"Count", "Time", "Address", "Result", "Latency"},
                                              Row{"7", "2026-01-31T12:00:00.000Z", "c0ffee01:5", "timeout", "0"}));
}

TEST(PingMsg, ResponseIsLinkedToItsRequest) {
    auto const request = PingMsg::create(node5);
    auto const response = PingMsg::create(request, ZResult::success, 250);
    EXPECT_EQ(response->correlation(), request->id());
    EXPECT_NE(response->id(), request->id());
    EXPECT_EQ(response->result(), ZResult::success);
    EXPECT_EQ(request->result(), ZResult::none);
    EXPECT_EQ(request->latencyMs(), 0U);
}

TEST(PingMsg, ResponseShowsItsLatencyInColumn4AndItsResultInColumn3) {
    auto const response = PingMsg::create(PingMsg::create(node5), ZResult::success, 250);
    auto const rows = shown(*response);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].at(4), "250");
    EXPECT_EQ(rows[0].at(3), "success");
}

TEST(PingMsg, ShowsOneRowOfFiveCellsWithoutItsHeader) {
    auto const rows = shown(*PingMsg::create(node5));
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].size(), 5U);
}

TEST(PingMsg, ShowsTwoRowsWithItsHeader) {
    auto const ping = PingMsg::create(node5);
    ping->header(true);
    auto const rows = shown(*ping);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0], (Row{"Count", "Time", "Address", "Result", "Latency"}));
}

TEST(PingMsg, AppendsItsRowsToThoseThatAreThere) {
    StringVecVec rows{{"before"}};
    PingMsg::create(node5)->accumulateDisplay(rows);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0], Row{"before"});
}

TEST(PingMsg, ShowsANegativeCount) {
    auto const ping = PingMsg::create(node5);
    ping->count(-1);
    auto const rows = shown(*ping);
    EXPECT_EQ(rows.at(0).at(0), "-1");
}

TEST(PingMsg, AsksForWidthsOfColumns0And3) {
    auto const ping = PingMsg::create(node5);
    shown(*ping);
    EXPECT_THAT(ping->widths(), ElementsAre(6U, 0U, 0U, 17U));
}

TEST(PingMsg, IsCopiedWithCountTimeAndHeader) {
    PingMsg ping(node5);
    ping.header(true);
    ping.count(7);
    ping.time(noon);
    PingMsg const copy(ping);
    EXPECT_THAT(shown(copy), ElementsAre(Row{"Count", "Time", "Address", "Result", "Latency"},
                                         Row{"7", "2026-01-31T12:00:00.000Z", "c0ffee01:5", "none", "0"}));
}

TEST(PingMsg, RefusesANegativeLatency) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::PingMsg","latencyMs_":-1})"),
              "SerializerError: latencyMs_: expected unsigned int, got -1");
}

TEST(PingMsg, NamesThePathToABadNodeId) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::PingMsg","destination_":{"nodeId_":"5"}})"),
              "SerializerError: destination_.nodeId_: expected unsigned byte, got string");
}

} // namespace
} // namespace zorv
