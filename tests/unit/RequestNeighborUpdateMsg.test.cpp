// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/RequestNeighborUpdateMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"

namespace zorv {
namespace {

ZwaveAddress const node5(0xC0FFEE01U, 5);
ZwaveAddress const node32(0xC0FFEE01U, 32);

TEST(RequestNeighborUpdateMsg, RequestWritesResult1AndTimeout180) {
    auto const request = RequestNeighborUpdateMsg::create(node5);
    EXPECT_EQ(ownMembers<Confirmable>(*request),
              R"(,"address_":{"homeId_":3237998081,"nodeId_":5},"status_":"none","timeout_":180})");
    EXPECT_NE(toText(*request).find(R"("result_":"success")"), std::string::npos);
    EXPECT_EQ(request->result(), 1);
}

TEST(RequestNeighborUpdateMsg, DefaultHasResult0AndTimeout180) {
    RequestNeighborUpdateMsg const message;
    EXPECT_EQ(message.result(), 0);
    EXPECT_EQ(message.timeout(), 180U);
    EXPECT_EQ(message.status(), 0);
    EXPECT_EQ(message.address(), ZwaveAddress::INVALID_ADDRESS);
}

TEST(RequestNeighborUpdateMsg, MadeWithoutATimeoutHas180) {
    auto const message = RequestNeighborUpdateMsg::create(ZResult::failure, node5, RequestNeighborUpdateStatus::failed);
    EXPECT_EQ(message->result(), 2);
    EXPECT_EQ(message->status(), 0x23);
    EXPECT_EQ(message->timeout(), 180U);
}

TEST(RequestNeighborUpdateMsg, AnswerTakesTheAddressFromItsArgumentEvenWhereTheRequestsDiffers) {
    auto const request = RequestNeighborUpdateMsg::create(node5);
    auto const answer =
        RequestNeighborUpdateMsg::create(request, ZResult::inProgress, node32, RequestNeighborUpdateStatus::started, 7);
    EXPECT_EQ(answer->address(), node32);
    EXPECT_EQ(answer->result(), 3);
    EXPECT_EQ(answer->status(), RequestNeighborUpdateStatus::started);
    EXPECT_EQ(answer->timeout(), 7U);
    EXPECT_EQ(answer->correlation(), request->id());
}

TEST(RequestNeighborUpdateMsg, RefusesToRespondToANullRequest) {
    EXPECT_EQ(errorOf([] {
                  RequestNeighborUpdateMsg::create(boost::shared_ptr<RequestNeighborUpdateMsg>(), ZResult::success,
                                                   node5, RequestNeighborUpdateStatus::done, 1);
              }),
              "NullPointerError: msg is null");
}

TEST(RequestNeighborUpdateMsg, ShowsTheNodeIdInHexAndTheStatus) {
    RequestNeighborUpdateMsg const message(ZResult::success, node32, RequestNeighborUpdateStatus::done, 1);
    EXPECT_EQ(shown(message), (StringVecVec{{"Node id:", "20"}, {"Request status:", "done"}}));
}

TEST(RequestNeighborUpdateMsg, RefusesAnUnknownStatus) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::RequestNeighborUpdateMsg","status_":"overflow"})"),
              R"(InvalidEnumError: status_: invalid RequestNeighborUpdateStatus text "overflow")");
}

} // namespace
} // namespace zorv
