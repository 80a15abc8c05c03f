// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/LearnModeMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"

#include <csignal>

namespace zorv {
namespace {

TEST(LearnModeMsg, RequestWritesTheDefaultTimeoutAndStatusZero) {
    auto const request = LearnModeMsg::create(LearnMode::classic);
    EXPECT_EQ(ownMembers<Confirmable>(*request), R"(,"mode_":"classic","status_":"none","timeout_":180000})");
    EXPECT_EQ(request->result(), 0);
}

TEST(LearnModeMsg, DefaultSurvivesTheWireWithTimeout180000) {
    LearnModeMsg const message;
    auto const back = readBack<LearnModeMsg>(toText(message));
    EXPECT_EQ(back->timeout(), 180000U);
    EXPECT_EQ(back->mode(), 0);
    EXPECT_EQ(back->status(), 0);
    EXPECT_EQ(back->result(), 0);
}

TEST(LearnModeMsg, ReaderStartsFromTimeout180000) { EXPECT_EQ(readBlank<LearnModeMsg>()->timeout(), 180000U); }

TEST(LearnModeMsg, TakesEveryValueThatItIsGiven) {
    auto const message =
        LearnModeMsg::create(LearnMode::networkWideExclusion, ZResult::rejected, LearnModeStatus::failed, 12);
    EXPECT_EQ(message->mode(), LearnMode::networkWideExclusion);
    EXPECT_EQ(message->result(), 4);
    EXPECT_EQ(message->status(), LearnModeStatus::failed);
    EXPECT_EQ(message->timeout(), 12U);
}

TEST(LearnModeMsg, AnswerKeepsTheModeOfTheRequestAndTakesItsOwnTimeout) {
    auto const request = LearnModeMsg::create(LearnMode::networkWideInclusion);
    auto const answer = LearnModeMsg::create(request, ZResult::success, LearnModeStatus::deleted, 55);
    EXPECT_EQ(answer->mode(), LearnMode::networkWideInclusion);
    EXPECT_EQ(answer->status(), LearnModeStatus::deleted);
    EXPECT_EQ(answer->timeout(), 55U);
    EXPECT_EQ(answer->result(), 1);
    EXPECT_EQ(answer->correlation(), request->id());
}

#ifndef NDEBUG
TEST(LearnModeMsgDeathTest, ResponseToANullRequestEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(LearnModeMsg::create(boost::shared_ptr<LearnModeMsg>(), ZResult::success, LearnModeStatus::done, 1),
                testing::KilledBySignal(SIGABRT), "");
}
#endif

TEST(LearnModeMsg, ShowsItsStatusAlone) {
    LearnModeMsg const message(LearnMode::classic, ZResult::success, LearnModeStatus::started, 5);
    EXPECT_EQ(shown(message), (StringVecVec{{"Learn status:", "started"}}));
}

TEST(LearnModeMsg, RefusesUnknownTexts) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::LearnModeMsg","mode_":"Classic"})"),
              R"(InvalidEnumError: mode_: invalid LearnMode text "Classic")");
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::LearnModeMsg","status_":"classic"})"),
              R"(InvalidEnumError: status_: invalid LearnModeStatus text "classic")");
}

} // namespace
} // namespace zorv
