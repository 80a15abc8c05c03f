// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/CliDisplayMsg.h"

#include "tests/support/LogCapture.h"
#include "tests/support/errorOf.h"
#include "tests/support/golden.h"
#include "tests/support/wire.h"

namespace zorv {
namespace {

StringVecVec const table{{"Node", "Room"}, {"5"}, {}, {"", "", "x"}};

TEST(CliDisplayMsg, IsEmptyByDefault) {
    CliDisplayMsg const message;
    EXPECT_TRUE(message.data().empty());
    EXPECT_EQ(static_cast<int>(message.result()), 0);
}

TEST(CliDisplayMsg, WritesAnEmptyTableAsAnEmptyArrayAndReadsItBack) {
    EXPECT_EQ(ownMembers<Confirmable>(CliDisplayMsg()), R"(,"data_":[]})");
    EXPECT_TRUE(readBack<CliDisplayMsg>(toText(CliDisplayMsg()))->data().empty());
}

TEST(CliDisplayMsg, KeepsTheLengthOfEveryRow) {
    CliDisplayMsg const message(table);
    EXPECT_EQ(ownMembers<Confirmable>(message), R"(,"data_":[["Node","Room"],["5"],[],["","","x"]]})");
    EXPECT_EQ(readBack<CliDisplayMsg>(toText(message))->data(), table);
}

TEST(CliDisplayMsg, ReadsTheCellsOfItsGoldenText) {
    auto const message = readBack<CliDisplayMsg>(golden("CliDisplayMsg"));
    EXPECT_EQ(message->data(), (StringVecVec{{"Node", "Room"}, {"5", "K\u00fcche", "\"quoted\"\n"}, {}}));
}

TEST(CliDisplayMsg, RequestCarriesTheTable) {
    auto const request = CliDisplayMsg::create(table);
    EXPECT_EQ(request->data(), table);
    EXPECT_EQ(request->result(), ZResult::none);
}

TEST(CliDisplayMsg, ResponseCarriesItsOwnTable) {
    auto const request = CliDisplayMsg::create(table);
    request->role(MessageRole::request);
    auto const response = CliDisplayMsg::create(request, ZResult::success, {{"answer"}});
    EXPECT_EQ(response->data(), (StringVecVec{{"answer"}}));
    EXPECT_EQ(response->result(), ZResult::success);
    EXPECT_EQ(response->correlation(), request->id());
    EXPECT_EQ(response->role(), MessageRole::request); // everything else is a copy of the request
    EXPECT_EQ(request->data(), table);
}

TEST(CliDisplayMsg, RefusesToRespondToANullRequest) {
    EXPECT_EQ(errorOf([] { CliDisplayMsg::create(nullptr, ZResult::success, table); }),
              "NullPointerError: msg is null");
}

TEST(CliDisplayMsg, RefusesATableThatIsNotAnArray) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::CliDisplayMsg","data_":"row"})"),
              "SyntaxError: expected array, got string");
}

TEST(CliDisplayMsg, RefusesARowThatIsNotAnArray) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::CliDisplayMsg","data_":[["5"],null]})"),
              "SyntaxError: expected array, got null");
}

TEST(CliDisplayMsg, RefusesACellThatIsNotAString) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::CliDisplayMsg","data_":[["5"],["x",5]]})"),
              "SerializerError: data_[1][1]: expected string, got int");
}

TEST(CliDisplayMsg, AppendsItsRowsToATableWithoutAColumnWarning) {
    LogCapture const log;
    StringVecVec rows{{"before", "it"}};
    CliDisplayMsg(table).accumulateDisplay(rows);
    EXPECT_EQ(rows, (StringVecVec{{"before", "it"}, {"Node", "Room"}, {"5"}, {}, {"", "", "x"}}));
    EXPECT_TRUE(log.lines().empty());
}

TEST(AgentData, IsEmptyByDefault) {
    AgentData const agent;
    EXPECT_EQ(agent.id(), 0U);
    EXPECT_EQ(agent.uuid(), "");
    EXPECT_EQ(agent.room(), "");
    EXPECT_EQ(agent.device(), "");
    EXPECT_EQ(agent.driver(), "");
}

TEST(AgentData, TakesTheNumberAndTheFourTextsInOrder) {
    auto const agent = AgentData::create(7, "u-u", "kitchen", "lamp", "zwave-lamp");
    EXPECT_EQ(agent->id(), 7U);
    EXPECT_EQ(agent->uuid(), "u-u");
    EXPECT_EQ(agent->room(), "kitchen");
    EXPECT_EQ(agent->device(), "lamp");
    EXPECT_EQ(agent->driver(), "zwave-lamp");
}

} // namespace
} // namespace zorv
