// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ResetDefaultsMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/wire.h"

namespace zorv {
namespace {

TEST(ResetDefaultsMsg, RequestHasTheDefaultTimeout) {
    auto const request = ResetDefaultsMsg::create();
    EXPECT_EQ(ownMembers<Confirmable>(*request), R"(,"timeout_":180})");
    EXPECT_EQ(request->result(), 0);
    EXPECT_EQ(request->role(), 0);
}

TEST(ResetDefaultsMsg, ReportCarriesTheResultAndRole3) {
    auto const report = ResetDefaultsMsg::create(ZResult::failure);
    EXPECT_EQ(report->result(), 2);
    EXPECT_EQ(report->role(), 3);
    EXPECT_EQ(report->timeout(), 180U);
}

TEST(ResetDefaultsMsg, AnswerKeepsTheRequestAndCarriesTheNewTimeout) {
    auto const request = ResetDefaultsMsg::create();
    request->role(MessageRole::request);
    request->priority(Priority::high);
    auto const response = ResetDefaultsMsg::create(request, ZResult::success, 33);
    EXPECT_EQ(response->timeout(), 33U);
    EXPECT_EQ(response->result(), 1);
    EXPECT_EQ(response->role(), MessageRole::request);
    EXPECT_EQ(response->priority(), Priority::high);
    EXPECT_EQ(response->correlation(), request->id());
    EXPECT_EQ(request->timeout(), 180U);
}

TEST(ResetDefaultsMsg, RefusesToRespondToANullRequest) {
    EXPECT_EQ(errorOf([] { ResetDefaultsMsg::create(boost::shared_ptr<ResetDefaultsMsg>(), ZResult::success, 1); }),
              "NullPointerError: msg is null");
}

TEST(ResetDefaultsMsg, ReaderStartsFromTheDefaultTimeout) {
    EXPECT_EQ(readBack<ResetDefaultsMsg>(R"({"__name__":"zorv::ResetDefaultsMsg"})")->timeout(), 180U);
}

TEST(ResetDefaultsMsg, TimeoutCanBeSet) {
    ResetDefaultsMsg message(1);
    message.timeout(4294967295U);
    EXPECT_EQ(ownMembers<Confirmable>(message), R"(,"timeout_":4294967295})");
}

} // namespace
} // namespace zorv
