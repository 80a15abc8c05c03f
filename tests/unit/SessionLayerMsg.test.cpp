// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SessionLayerMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"
#include "tests/support/wire.h"

#include <boost/make_shared.hpp>

namespace zorv {
namespace {

TEST(SessionLayerMsg, MadeFromTheOperationPingWritesPingAndAnUnknownStatus) {
    SessionLayerMsg const message(SessionLayerOp::ping);
    EXPECT_EQ(ownMembers<Confirmable>(message), R"(,"op_":"ping","status_":"unknown"})");
    EXPECT_EQ(message.role(), 1);
    EXPECT_EQ(message.result(), 0);
}

TEST(SessionLayerMsg, MadeFromAStatusIsAReportWhoseOperationIsStatus) {
    SessionLayerMsg const message(static_cast<SessionLayerStatus::Enum>(7));
    EXPECT_EQ(ownMembers<Confirmable>(message), R"(,"op_":"status","status_":"frameTimeoutError"})");
    EXPECT_EQ(message.role(), 3);
    EXPECT_EQ(message.result(), 0);
}

TEST(SessionLayerMsg, MadeFromNothingHasNoRole) {
    SessionLayerMsg const message;
    EXPECT_EQ(message.op(), 0);
    EXPECT_EQ(message.status(), 0);
    EXPECT_EQ(message.role(), 0);
}

TEST(SessionLayerMsg, RefusesTheOperationTextInvalid) {
    auto text = toText(SessionLayerMsg());
    auto const value = text.find(R"("op_":"status")");
    ASSERT_NE(value, std::string::npos);
    text.replace(value, 14, R"("op_":"invalid")");
    EXPECT_EQ(errorOf([&] { readSerializable(text); }),
              R"(InvalidEnumError: op_: invalid SessionLayerOp text "invalid")");
}

TEST(SessionLayerMsg, HasTwoOperations) {
    expectTexts<SessionLayerOp::Enum>({"status", "ping"});
    EXPECT_EQ(errorOf([] { toString(static_cast<SessionLayerOp::Enum>(2)); }),
              "InvalidEnumError: invalid SessionLayerOp value 2");
}

TEST(SessionLayerMsg, HasTwelveStatuses) {
    expectTexts<SessionLayerStatus::Enum>({"unknown", "idle", "threadRunning", "threadStopped", "frameNormal",
                                           "frameChecksumError", "frameRetriesFailedError", "frameTimeoutError",
                                           "moduleNotPresent", "moduleClosed", "moduleConfigFailure", "moduleOpen"});
    EXPECT_EQ(errorOf([] { toString(static_cast<SessionLayerStatus::Enum>(12)); }),
              "InvalidEnumError: invalid SessionLayerStatus value 12");
    EXPECT_EQ(errorOf([] { SessionLayerStatus::toEnum("Idle"); }),
              R"(InvalidEnumError: invalid SessionLayerStatus text "Idle")");
}

TEST(SessionLayerMsg, AnswersWithACopyOfTheRequest) {
    auto const request = boost::make_shared<SessionLayerMsg>(SessionLayerOp::ping);
    auto const response = SessionLayerMsg::create(request, ZResult::success);
    EXPECT_EQ(response->op(), SessionLayerOp::ping);
    EXPECT_EQ(response->role(), MessageRole::request);
    EXPECT_EQ(response->result(), 1);
    EXPECT_EQ(response->correlation(), request->id());
    EXPECT_NE(response->id(), request->id());
}

TEST(SessionLayerMsg, RefusesToRespondToANullRequest) {
    EXPECT_EQ(errorOf([] { SessionLayerMsg::create(boost::shared_ptr<SessionLayerMsg>(), ZResult::success); }),
              "NullPointerError: msg is null");
}

/// A request whose copies are of another class. The catalogue has no such class.
class ForeignClone : public SessionLayerMsg {
public:
    boost::shared_ptr<TConfirmable> clone() const override { return boost::make_shared<Confirmable>(); }
};

TEST(SessionLayerMsg, ResponseIsNullWhenTheCloneIsOfAnotherClass) {
    EXPECT_FALSE(SessionLayerMsg::create(boost::make_shared<ForeignClone>(), ZResult::success));
}

} // namespace
} // namespace zorv
