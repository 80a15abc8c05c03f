// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ObserveMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/wire.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/QuitMsg.h"
#include "zwave/libquillet/VersionMsg.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>

#include <csignal>

namespace zorv {
namespace {

using testing::EndsWith;
using testing::StartsWith;

boost::shared_ptr<ObserveMsg> observed(boost::shared_ptr<TMessage> const& message) {
    return ObserveMsg::create(ObserveDirection::received, message);
}

/// The text of an observed ping, inside as many other observed messages as `depth` says.
std::string nested(int depth) {
    boost::shared_ptr<TMessage> message = boost::make_shared<PingMsg>();
    for (int i = 0; i < depth; ++i) { message = observed(message); }
    return toText(*message);
}

TEST(ObserveMsg, WritesTheWholeFramedPingMsgAndReadsItBack) {
    auto const ping = boost::make_shared<PingMsg>(ZwaveAddress(0xC0FFEE01U, 5));
    auto const message = observed(ping);
    EXPECT_EQ(ownMembers<Confirmable>(*message),
              R"(,"action_":"none","direction_":"received","message_":)" + toText(*ping) + "}");

    auto const back = readBack<ObserveMsg>(toText(*message));
    auto const pingBack = boost::dynamic_pointer_cast<PingMsg>(back->message());
    ASSERT_TRUE(pingBack);
    EXPECT_EQ(toText(*pingBack), toText(*ping));
}

TEST(ObserveMsg, CarriesAnEventAndAMessageWithoutBases) {
    auto const quit = readBack<ObserveMsg>(toText(*observed(boost::make_shared<QuitMsg>())));
    EXPECT_TRUE(boost::dynamic_pointer_cast<QuitMsg>(quit->message()));
    auto const version = readBack<ObserveMsg>(toText(*observed(VersionMsg::create("2.1"))));
    auto const inner = boost::dynamic_pointer_cast<VersionMsg>(version->message());
    ASSERT_TRUE(inner);
    EXPECT_EQ(inner->protocolVersion(), "2.1");
}

TEST(ObserveMsg, WritesAnEmptyMessageAsNullAndReadsItBack) {
    ObserveMsg const message(ObserveAction::stop, ObserveDirection::sent);
    EXPECT_EQ(ownMembers<Confirmable>(message), R"(,"action_":"stop","direction_":"sent","message_":null})");
    EXPECT_FALSE(readBack<ObserveMsg>(toText(message))->message());
}

TEST(ObserveMsg, HasNoMessageWhenTheTextHoldsAnObjectThatIsNotAMessage) {
    auto const message =
        readBack<ObserveMsg>(R"({"__name__":"zorv::ObserveMsg","message_":{"__name__":"zorv::Blob"}})");
    EXPECT_FALSE(message->message());
}

TEST(ObserveMsg, RefusesAnObjectOfAClassThatIsNotRegistered) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::ObserveMsg","message_":{"__name__":"zorv::ZwaveAddress"}})"),
              R"(SerializerError: message_: unknown class "zorv::ZwaveAddress")");
}

TEST(ObserveMsg, HoldsNothingByDefault) {
    EXPECT_EQ(ownMembers<Confirmable>(ObserveMsg()), R"(,"action_":"none","direction_":"none","message_":null})");
}

TEST(ObserveMsg, ObservedMessageCarriesResult1) {
    auto const message = observed(boost::make_shared<PingMsg>());
    EXPECT_EQ(message->result(), 1);
    EXPECT_EQ(message->action(), 0);
    EXPECT_EQ(message->direction(), ObserveDirection::received);
}

TEST(ObserveMsg, RequestToObserveHasAction1AndDirection0) {
    auto const wish = ObserveMsg::create(ZResult::inProgress);
    EXPECT_EQ(wish->action(), 1);
    EXPECT_EQ(wish->direction(), 0);
    EXPECT_EQ(wish->result(), 3);
    EXPECT_FALSE(wish->message());
}

TEST(ObserveMsg, AnswersARequestOfAnyClassWithAction0AndDirection0) {
    auto const request = boost::make_shared<PingMsg>();
    auto const answer = ObserveMsg::create(request, ZResult::rejected);
    EXPECT_EQ(answer->action(), 0);
    EXPECT_EQ(answer->direction(), 0);
    EXPECT_EQ(answer->result(), 4);
    EXPECT_EQ(answer->correlation(), request->id());
    EXPECT_FALSE(answer->message());
}

#ifndef NDEBUG
TEST(ObserveMsgDeathTest, ResponseToANullRequestEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(ObserveMsg::create(boost::shared_ptr<TMessage>(), ZResult::success), testing::KilledBySignal(SIGABRT),
                "");
}
#endif

TEST(ObserveMsg, CarriesItselfDownToTheDepthThatTheReaderAllows) {
    // The ping takes 8 of the 128 levels: itself, three bases arrays with an object each, and the empty one.
    auto const deepest = nested(120);
    auto message = boost::dynamic_pointer_cast<TMessage>(readSerializable(deepest));
    int depth = 0;
    while (auto const observer = boost::dynamic_pointer_cast<ObserveMsg>(message)) {
        message = observer->message();
        ++depth;
    }
    EXPECT_EQ(depth, 120);
    EXPECT_TRUE(boost::dynamic_pointer_cast<PingMsg>(message));
}

TEST(ObserveMsg, IsRefusedWhenNestedDeeperThanTheReaderAllows) {
    EXPECT_THAT(errorOf([] { nested(121); }), EndsWith("nested deeper than 128 levels")); // no writer makes such a text
    auto text = nested(120);
    auto const innermost = text.find(R"({"__name__":"zorv::PingMsg")");
    text.insert(text.find('}', innermost), R"(,"more":[[[[[[[[[[[]]]]]]]]]]])");
    auto const error = errorOfReading(text);
    EXPECT_THAT(error, StartsWith("SerializerError: malformed text: line 1, column "));
    EXPECT_THAT(error, EndsWith(": nested deeper than 128 levels"));
}

TEST(ObserveMsg, IsRefusedAHundredThousandLevelsDeepWithoutExhaustingTheStack) {
    std::string text;
    for (int i = 0; i < 100000; ++i) { text += R"({"__name__":"zorv::ObserveMsg","message_":)"; }
    text += "null" + std::string(100000, '}');
    EXPECT_THAT(errorOfReading(text), EndsWith(": nested deeper than 128 levels"));
}

TEST(ObserveMsg, SharesTheObservedMessageWithItsCopies) {
    auto const message = observed(boost::make_shared<PingMsg>());
    auto const copy = boost::dynamic_pointer_cast<ObserveMsg>(message->clone());
    EXPECT_EQ(copy->message(), message->message());
}

} // namespace
} // namespace zorv
