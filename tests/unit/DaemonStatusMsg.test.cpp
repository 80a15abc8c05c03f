// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/DaemonStatusMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"
#include "tests/support/wire.h"

namespace zorv {
namespace {

ZwaveAddress const controller(0xC0FFEE01U, 1);
boost::shared_ptr<DaemonStatusMsg> const noRequest;

constexpr DaemonDetail::Enum detail(int bits) { return static_cast<DaemonDetail::Enum>(bits); }

TEST(DaemonStatusMsg, WritesDetailZeroAsNoDetailAndReadsItBack) {
    EXPECT_EQ(toString(detail(0)), "noDetail");
    EXPECT_EQ(DaemonDetail::toEnum("noDetail"), 0);
}

TEST(DaemonStatusMsg, WritesDetail63AsAllSixNamesInBitOrderAndReadsItBack) {
    std::string const all =
        "moduleNotPresent|moduleCommFailure|invalidCountryCode|firmwareFileNotFound|lostSocket|timeout";
    EXPECT_EQ(toString(detail(63)), all);
    EXPECT_EQ(DaemonDetail::toEnum(all), 63);
}

TEST(DaemonStatusMsg, WritesDetail37AsThreeNames) {
    EXPECT_EQ(toString(detail(37)), "moduleNotPresent|invalidCountryCode|timeout");
    EXPECT_EQ(DaemonDetail::toEnum("moduleNotPresent|invalidCountryCode|timeout"), 37);
}

TEST(DaemonStatusMsg, RefusesDetail64AfterWritingNothing) {
    std::ostringstream os;
    EXPECT_EQ(errorOf([&] { os << detail(64); }), "InvalidEnumError: invalid DaemonDetail value 64");
    EXPECT_EQ(os.str(), "");
}

TEST(DaemonStatusMsg, RefusesDetail65AfterWritingTheKnownName) {
    std::ostringstream os;
    EXPECT_EQ(errorOf([&] { os << detail(65); }), "InvalidEnumError: invalid DaemonDetail value 65");
    EXPECT_EQ(os.str(), "moduleNotPresent");
}

TEST(DaemonStatusMsg, RefusesADetailThatIsNamedTwice) {
    EXPECT_EQ(errorOf([] { DaemonDetail::toEnum("lostSocket|lostSocket"); }),
              R"(InvalidEnumError: invalid DaemonDetail text "lostSocket|lostSocket")");
}

TEST(DaemonStatusMsg, RefusesDetailsOutOfBitOrder) {
    EXPECT_EQ(errorOf([] { DaemonDetail::toEnum("timeout|lostSocket"); }),
              R"(InvalidEnumError: invalid DaemonDetail text "timeout|lostSocket")");
}

TEST(DaemonStatusMsg, SkipsTheWordNoDetailBeforeADetail) { EXPECT_EQ(DaemonDetail::toEnum("noDetail|timeout"), 32); }

TEST(DaemonStatusMsg, RefusesTheWordNoDetailAfterADetail) {
    EXPECT_EQ(errorOf([] { DaemonDetail::toEnum("timeout|noDetail"); }),
              R"(InvalidEnumError: invalid DaemonDetail text "timeout|noDetail")");
}

TEST(DaemonStatusMsg, RefusesAnEmptyPieceOfADetail) {
    for (std::string const text : {"lostSocket|", "|lostSocket", "lostSocket||timeout"}) {
        EXPECT_EQ(errorOf([&] { DaemonDetail::toEnum(text); }),
                  "InvalidEnumError: invalid DaemonDetail text \"" + text + '"');
    }
}

TEST(DaemonStatusMsg, ReadsAnEmptyDetailAsZero) { EXPECT_EQ(DaemonDetail::toEnum(""), 0); }

TEST(DaemonStatusMsg, HasFourStatuses) {
    expectTexts<DaemonStatus::Enum>({"notReady", "moduleError", "notSecure", "secure"});
    EXPECT_EQ(errorOf([] { toString(static_cast<DaemonStatus::Enum>(4)); }),
              "InvalidEnumError: invalid DaemonStatus value 4");
    EXPECT_EQ(errorOf([] { DaemonStatus::toEnum("invalid"); }),
              R"(InvalidEnumError: invalid DaemonStatus text "invalid")");
}

TEST(DaemonStatusMsg, QuestionHasRole1) {
    auto const question = DaemonStatusMsg::create();
    EXPECT_EQ(question->role(), 1);
    EXPECT_EQ(question->result(), 0);
    EXPECT_EQ(ownMembers<Confirmable>(*question),
              R"(,"address_":{"homeId_":0,"nodeId_":0},"status_":"notReady","detail_":"noDetail"})");
}

TEST(DaemonStatusMsg, AnnouncementHasRole3) {
    auto const announcement = DaemonStatusMsg::create(controller, DaemonStatus::secure, DaemonDetail::timeout);
    EXPECT_EQ(announcement->role(), 3);
    EXPECT_EQ(announcement->result(), 0);
    EXPECT_EQ(ownMembers<Confirmable>(*announcement),
              R"(,"address_":{"homeId_":3237998081,"nodeId_":1},"status_":"secure","detail_":"timeout"})");
}

TEST(DaemonStatusMsg, MadeFromARequestHasNoResultAndNoRole) {
    auto const question = DaemonStatusMsg::create();
    DaemonStatusMsg const answer(question, controller, DaemonStatus::notSecure, DaemonDetail::lostSocket);
    EXPECT_EQ(answer.result(), 0);
    EXPECT_EQ(answer.role(), 0);
    EXPECT_EQ(answer.correlation(), question->id());
}

TEST(DaemonStatusMsg, FilledAnswerHasResult1) {
    auto const question = DaemonStatusMsg::create();
    auto const answer =
        DaemonStatusMsg::create(question, controller, DaemonStatus::moduleError, DaemonDetail::moduleNotPresent);
    EXPECT_EQ(answer->result(), 1);
    EXPECT_EQ(answer->role(), 0);
    EXPECT_EQ(answer->address(), controller);
    EXPECT_EQ(answer->status(), 1);
    EXPECT_EQ(answer->detail(), 1);
    EXPECT_EQ(answer->correlation(), question->id());
    EXPECT_NE(answer->id(), question->id());
}

TEST(DaemonStatusMsg, RepeatingAnswerKeepsEveryFieldOfTheRequest) {
    auto const request = DaemonStatusMsg::create(controller, DaemonStatus::secure, detail(48));
    auto const answer = DaemonStatusMsg::create(request, ZResult::timeout);
    EXPECT_EQ(answer->result(), 5);
    EXPECT_EQ(answer->address(), controller);
    EXPECT_EQ(answer->status(), DaemonStatus::secure);
    EXPECT_EQ(answer->detail(), 48);
    EXPECT_EQ(answer->role(), MessageRole::report);
    EXPECT_EQ(answer->correlation(), request->id());
}

TEST(DaemonStatusMsg, RefusesToRespondToANullRequest) {
    EXPECT_EQ(errorOf([] { DaemonStatusMsg(noRequest, controller, DaemonStatus::secure, DaemonDetail::noDetail); }),
              "NullPointerError: msg is null");
    EXPECT_EQ(
        errorOf([] { DaemonStatusMsg::create(noRequest, controller, DaemonStatus::secure, DaemonDetail::noDetail); }),
        "NullPointerError: msg is null");
    EXPECT_EQ(errorOf([] { DaemonStatusMsg::create(noRequest, ZResult::success); }), "NullPointerError: msg is null");
}

} // namespace
} // namespace zorv
