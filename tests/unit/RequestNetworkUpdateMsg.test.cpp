// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/RequestNetworkUpdateMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"

namespace zorv {
namespace {

TEST(RequestNetworkUpdateMsg, RequestWritesResult1Status2AndTimeout0) {
    auto const request = RequestNetworkUpdateMsg::create();
    EXPECT_EQ(ownMembers<Confirmable>(*request), R"(,"status_":"wait","timeout_":0})");
    EXPECT_EQ(request->result(), 1);
    EXPECT_EQ(request->status(), 2);
}

TEST(RequestNetworkUpdateMsg, DefaultWritesStatus0AndTimeout0) {
    RequestNetworkUpdateMsg const message;
    EXPECT_EQ(ownMembers<Confirmable>(message), R"(,"status_":"done","timeout_":0})");
    EXPECT_EQ(message.result(), 0);
    EXPECT_EQ(message.status(), 0);
}

TEST(RequestNetworkUpdateMsg, HasADefaultTimeoutThatItDoesNotUse) {
    EXPECT_EQ(unsigned{RequestNetworkUpdateMsg::DEFAULT_TIMEOUT}, 180U);
    EXPECT_EQ(readBlank<RequestNetworkUpdateMsg>()->timeout(), 0);
}

TEST(RequestNetworkUpdateMsg, WritesATimeoutAbove2147483647AsANegativeNumber) {
    RequestNetworkUpdateMsg const message(ZResult::none, RequestNetworkUpdateStatus::done, 2147483648U);
    EXPECT_EQ(ownMembers<Confirmable>(message), R"(,"status_":"done","timeout_":-2147483648})");
    auto const made = RequestNetworkUpdateMsg::create(ZResult::none, RequestNetworkUpdateStatus::done, 4294967295U);
    EXPECT_EQ(readBack<RequestNetworkUpdateMsg>(toText(*made))->timeout(), -1);
}

TEST(RequestNetworkUpdateMsg, KeepsATimeoutOf2147483647) {
    RequestNetworkUpdateMsg const message(ZResult::none, RequestNetworkUpdateStatus::done, 2147483647U);
    EXPECT_EQ(message.timeout(), 2147483647);
}

TEST(RequestNetworkUpdateMsg, AnswerTakesEverythingFromItsArguments) {
    auto const request = RequestNetworkUpdateMsg::create();
    auto const answer =
        RequestNetworkUpdateMsg::create(request, ZResult::failure, RequestNetworkUpdateStatus::disabled, 17);
    EXPECT_EQ(answer->result(), 2);
    EXPECT_EQ(answer->status(), 3);
    EXPECT_EQ(answer->timeout(), 17);
    EXPECT_EQ(answer->correlation(), request->id());
}

TEST(RequestNetworkUpdateMsg, RefusesToRespondToANullRequest) {
    EXPECT_EQ(errorOf([] {
                  RequestNetworkUpdateMsg::create(boost::shared_ptr<RequestNetworkUpdateMsg>(), ZResult::success,
                                                  RequestNetworkUpdateStatus::done, 1);
              }),
              "NullPointerError: msg is null");
}

TEST(RequestNetworkUpdateMsg, ShowsItsStatusAndItsSignedTimeout) {
    RequestNetworkUpdateMsg const message(ZResult::success, RequestNetworkUpdateStatus::overflow, 4294967286U);
    EXPECT_EQ(shown(message), (StringVecVec{{"Request status:", "overflow"}, {"Timeout:", "-10"}}));
}

TEST(RequestNetworkUpdateMsg, RefusesAnUnknownStatus) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::RequestNetworkUpdateMsg","status_":"started"})"),
              R"(InvalidEnumError: status_: invalid RequestNetworkUpdateStatus text "started")");
}

} // namespace
} // namespace zorv
