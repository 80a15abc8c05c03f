// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SerialManagerEvt.h"

#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"
#include "tests/support/wire.h"
#include "zwave/libquillet/QuitMsg.h"

namespace zorv {
namespace {

TEST(SerialManagerEvt, WritesItsStateBehindTheFrameOfTMessage) {
    SerialManagerEvt const event(SerialManagerStatus::sessionLayerRestart, 0);
    EXPECT_EQ(ownMembers<TMessage>(event), R"(,"status_":"sessionLayerRestart","percentComplete_":0})");
    auto const text = toText(event);
    EXPECT_NE(text.find(R"("__bases__":[{"__name__":"zorv::TMessage",)"), std::string::npos);
    EXPECT_EQ(text.find("zorv::Confirmable"), std::string::npos);
}

TEST(SerialManagerEvt, ReadsIdleButNotWithACapitalLetter) {
    EXPECT_EQ(SerialManagerStatus::toEnum("idle"), 0);
    EXPECT_EQ(errorOf([] { SerialManagerStatus::toEnum("Idle"); }),
              R"(InvalidEnumError: invalid SerialManagerStatus text "Idle")");
}

TEST(SerialManagerEvt, HasSixStates) {
    expectTexts<SerialManagerStatus::Enum>({"idle", "bootloaderRunning", "bootloaderStopped", "sessionLayerRunning",
                                            "sessionLayerStopped", "sessionLayerRestart"});
    EXPECT_EQ(errorOf([] { toString(static_cast<SerialManagerStatus::Enum>(6)); }),
              "InvalidEnumError: invalid SerialManagerStatus value 6");
}

TEST(SerialManagerEvt, CarriesMoreThanAHundredPercent) {
    SerialManagerEvt const event(SerialManagerStatus::bootloaderRunning, 4294967295U);
    EXPECT_EQ(ownMembers<TMessage>(event), R"(,"status_":"bootloaderRunning","percentComplete_":4294967295})");
    auto const back = readBack<SerialManagerEvt>(toText(event));
    EXPECT_EQ(back->percentComplete(), 4294967295U);
}

TEST(SerialManagerEvt, IsLinkedToTheMessageThatCausedIt) {
    QuitMsg const cause;
    auto const event = SerialManagerEvt::create(cause, SerialManagerStatus::bootloaderStopped, 40);
    EXPECT_EQ(event->correlation(), cause.id());
    EXPECT_EQ(event->status(), 2);
    EXPECT_EQ(event->percentComplete(), 40U);
    EXPECT_EQ(event->role(), MessageRole::none);
}

} // namespace
} // namespace zorv
