// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SubscribeMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/wire.h"

#include <boost/make_shared.hpp>

namespace zorv {
namespace {

std::string const frame = R"({"__name__":"zorv::SubscribeMsg",)";

TEST(SubscribeMsg, WritesOneEventAndAnAddedOneInThatOrder) {
    SubscribeMsg message(false, std::string("SystemStatusEvt"));
    message.add("DaemonStatusMsg");
    EXPECT_EQ(ownMembers<Confirmable>(message),
              R"(,"unsubscribe_":false,"events_":["SystemStatusEvt","DaemonStatusMsg"]})");
}

TEST(SubscribeMsg, KeepsAnEventThatIsAddedTwice) {
    SubscribeMsg message(true);
    message.add("NvmOpEvt");
    message.add("NvmOpEvt");
    EXPECT_EQ(ownMembers<Confirmable>(message), R"(,"unsubscribe_":true,"events_":["NvmOpEvt","NvmOpEvt"]})");
}

TEST(SubscribeMsg, WritesNoEventsAsAnEmptyArrayAndReadsThemBack) {
    SubscribeMsg const message(true);
    EXPECT_EQ(ownMembers<Confirmable>(message), R"(,"unsubscribe_":true,"events_":[]})");
    auto const back = readBack<SubscribeMsg>(toText(message));
    EXPECT_TRUE(back->unsubscribe());
    EXPECT_TRUE(back->events().empty());
}

TEST(SubscribeMsg, ShrinksALongerListToTheArrayThatIsRead) {
    SubscribeMsg message(false, std::vector<std::string>{"a", "b", "c"});
    Serializer s(frame + R"("events_":["x"]})");
    message.serialExtract(s);
    EXPECT_EQ(message.events(), std::vector<std::string>{"x"});
}

TEST(SubscribeMsg, RefusesEventsThatAreNotAnArray) {
    EXPECT_EQ(errorOf([] { readSerializable(frame + R"("events_":"NvmOpEvt"})"); }),
              "SyntaxError: expected array, got string");
}

TEST(SubscribeMsg, RequestsTakeOneEventOrAList) {
    EXPECT_EQ(SubscribeMsg::create(false, std::string("a"))->events(), std::vector<std::string>{"a"});
    auto const list = SubscribeMsg::create(true, std::vector<std::string>{"a", "b"});
    EXPECT_TRUE(list->unsubscribe());
    EXPECT_EQ(list->events(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(list->result(), 0);
}

TEST(SubscribeMsg, IsAnsweredWithACopy) {
    auto const request = SubscribeMsg::create(true, std::string("a"));
    auto const response = boost::dynamic_pointer_cast<SubscribeMsg>(request->makeResponse(ZResult::success));
    ASSERT_TRUE(response);
    EXPECT_TRUE(response->unsubscribe());
    EXPECT_EQ(response->events(), std::vector<std::string>{"a"});
    EXPECT_EQ(response->correlation(), request->id());
}

} // namespace
} // namespace zorv
