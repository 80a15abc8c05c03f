// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SendNifMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/wire.h"

#include <csignal>

namespace zorv {
namespace {

TEST(SendNifMsg, DefaultHasNeitherDestinationNorOptions) {
    EXPECT_EQ(ownMembers<Confirmable>(SendNifMsg()), R"(,"destination_":0,"options_":"none"})");
}

TEST(SendNifMsg, RequestCarriesDestinationAndOptions) {
    auto const request = SendNifMsg::create(12, TransmitOption::lowPower);
    EXPECT_EQ(ownMembers<Confirmable>(*request), R"(,"destination_":12,"options_":"lowPower"})");
    EXPECT_EQ(request->result(), 0);
}

TEST(SendNifMsg, AnswerGoesToAllWithTheDefaultOptionsWhateverTheRequestHeld) {
    auto const request = SendNifMsg::create(12, TransmitOption::lowPower);
    auto const answer = SendNifMsg::create(request, ZResult::success);
    EXPECT_EQ(ownMembers<Confirmable>(*answer), R"(,"destination_":255,"options_":"ack|autoRoute|explore"})");
    EXPECT_EQ(answer->options(), 37);
    EXPECT_EQ(answer->result(), 1);
    EXPECT_EQ(answer->correlation(), request->id());
}

#ifndef NDEBUG
TEST(SendNifMsgDeathTest, ResponseToANullRequestEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(SendNifMsg::create(boost::shared_ptr<SendNifMsg>(), ZResult::success), testing::KilledBySignal(SIGABRT),
                "");
}
#endif

TEST(SendNifMsg, RefusesAnUnknownOption) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::SendNifMsg","options_":"ack|beam"})"),
              R"(InvalidEnumError: options_: invalid TransmitOption text "ack|beam")");
}

} // namespace
} // namespace zorv
