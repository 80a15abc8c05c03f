// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ManageFailedNodeMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"

#include <boost/make_shared.hpp>

namespace zorv {
namespace {

ZwaveAddress const failedNode(0xC0FFEE01U, 7);

constexpr ManageFailedNodeOp::Enum operation(int flags) { return static_cast<ManageFailedNodeOp::Enum>(flags); }

TEST(ManageFailedNodeMsg, SkipsTheWordInvalidBeforeAFlag) {
    EXPECT_EQ(ManageFailedNodeOp::toEnum("invalid|remove"), 1);
}

TEST(ManageFailedNodeMsg, RefusesTheWordInvalidAfterAFlag) {
    EXPECT_EQ(errorOf([] { ManageFailedNodeOp::toEnum("remove|invalid"); }),
              R"(InvalidEnumError: invalid ManageFailedNodeOp text "remove|invalid")");
}

TEST(ManageFailedNodeMsg, ReadsAbortAloneAsEight) { EXPECT_EQ(ManageFailedNodeOp::toEnum("abort"), 8); }

TEST(ManageFailedNodeMsg, ReadsAnEmptyOperationAsZero) { EXPECT_EQ(ManageFailedNodeOp::toEnum(""), 0); }

TEST(ManageFailedNodeMsg, ReadsTheOperationInvalidAsZero) { EXPECT_EQ(ManageFailedNodeOp::toEnum("invalid"), 0); }

TEST(ManageFailedNodeMsg, RefusesFlagsOutOfOrderRepeatedOrUnknown) {
    for (auto const* const text : {"force|remove", "remove|remove", "remove|delete", "Remove", "remove|", "|remove"}) {
        EXPECT_EQ(errorOf([&] { ManageFailedNodeOp::toEnum(text); }),
                  std::string("InvalidEnumError: invalid ManageFailedNodeOp text \"") + text + '"');
    }
}

TEST(ManageFailedNodeMsg, WritesAllFourFlagsInTheirOrder) {
    EXPECT_EQ(toString(operation(15)), "remove|replace|force|abort");
    EXPECT_EQ(ManageFailedNodeOp::toEnum("remove|replace|force|abort"), 15);
}

TEST(ManageFailedNodeMsg, WritesSomeFlagsWithoutTheOthers) {
    EXPECT_EQ(toString(operation(0)), "invalid");
    EXPECT_EQ(toString(operation(5)), "remove|force");
    EXPECT_EQ(toString(operation(10)), "replace|abort");
}

TEST(ManageFailedNodeMsg, RefusesOperation16AfterWritingNothing) {
    std::ostringstream os;
    EXPECT_EQ(errorOf([&] { os << operation(16); }), "InvalidEnumError: invalid ManageFailedNodeOp value 16");
    EXPECT_EQ(os.str(), "");
}

TEST(ManageFailedNodeMsg, RefusesOperation21AfterWritingItsKnownFlags) {
    std::ostringstream os;
    EXPECT_EQ(errorOf([&] { os << operation(21); }), "InvalidEnumError: invalid ManageFailedNodeOp value 21");
    EXPECT_EQ(os.str(), "remove|force");
}

TEST(ManageFailedNodeMsg, WritesTheLowByteOfAnOperationInHex) {
    EXPECT_EQ(toHex(operation(10)), "0a");
    EXPECT_EQ(toHex(operation(0x1F3)), "f3");
}

TEST(ManageFailedNodeMsg, DefaultHasResult2AndTimeout180AndSurvivesTheWire) {
    ManageFailedNodeMsg const message;
    EXPECT_EQ(message.result(), 2);
    EXPECT_EQ(ownMembers<Confirmable>(message),
              R"(,"operation_":"invalid","address_":{"homeId_":0,"nodeId_":0},"status_":"invalid","timeout_":180})");
    EXPECT_EQ(toText(*readBack<ManageFailedNodeMsg>(toText(message))), toText(message));
}

TEST(ManageFailedNodeMsg, ReaderStartsFromResult2) { EXPECT_EQ(readBlank<ManageFailedNodeMsg>()->result(), 2); }

TEST(ManageFailedNodeMsg, WritesStatus2AsReplaceAndStatus3AsReplaced) {
    EXPECT_EQ(ManageFailedNodeStatus::toEnum("replace"), 2);
    EXPECT_EQ(ManageFailedNodeStatus::toEnum("replaced"), 3);
    EXPECT_EQ(toString(static_cast<ManageFailedNodeStatus::Enum>(2)), "replace");
    EXPECT_EQ(toString(static_cast<ManageFailedNodeStatus::Enum>(3)), "replaced");
}

TEST(ManageFailedNodeMsg, HasNineStatuses) {
    expectTexts<ManageFailedNodeStatus::Enum>({"invalid", "removed", "replace", "replaced", "nodeNotFailed",
                                               "nodeNotFound", "timeout", "aborting", "failure"});
    EXPECT_EQ(errorOf([] { toString(static_cast<ManageFailedNodeStatus::Enum>(9)); }),
              "InvalidEnumError: invalid ManageFailedNodeStatus value 9");
    EXPECT_EQ(errorOf([] { ManageFailedNodeStatus::toEnum(""); }),
              R"(InvalidEnumError: invalid ManageFailedNodeStatus text "")");
}

TEST(ManageFailedNodeMsg, RequestTakesResultAndStatusAndHasTheDefaultTimeout) {
    auto const request = ManageFailedNodeMsg::create(ManageFailedNodeOp::replace, failedNode, ZResult::success,
                                                     ManageFailedNodeStatus::aborting);
    EXPECT_EQ(request->operation(), 2);
    EXPECT_EQ(request->address(), failedNode);
    EXPECT_EQ(request->result(), 1);
    EXPECT_EQ(request->status(), 7);
    EXPECT_EQ(request->timeout(), 180U);
}

TEST(ManageFailedNodeMsg, AnswerTakesOperationAndAddressFromTheRequestAndTheRestFromTheDaemon) {
    auto const request = boost::make_shared<ManageFailedNodeMsg>(operation(5), failedNode, ZResult::failure,
                                                                 ManageFailedNodeStatus::invalid, 20U);
    request->role(MessageRole::request);
    auto const response = ManageFailedNodeMsg::create(request, ZResult::success, ManageFailedNodeStatus::removed, 30);
    EXPECT_EQ(response->operation(), 5);
    EXPECT_EQ(response->address(), failedNode);
    EXPECT_EQ(response->result(), 1);
    EXPECT_EQ(response->status(), 1);
    EXPECT_EQ(response->timeout(), 30U);
    EXPECT_EQ(response->role(), MessageRole::none);
    EXPECT_EQ(response->correlation(), request->id());
}

TEST(ManageFailedNodeMsg, RefusesToRespondToANullRequest) {
    EXPECT_EQ(errorOf([] {
                  ManageFailedNodeMsg::create(boost::shared_ptr<ManageFailedNodeMsg>(), ZResult::success,
                                              ManageFailedNodeStatus::removed, 1);
              }),
              "NullPointerError: msg is null");
}

TEST(ManageFailedNodeMsg, StatusCanBeSet) {
    ManageFailedNodeMsg message;
    message.status(ManageFailedNodeStatus::nodeNotFound);
    EXPECT_EQ(message.status(), 5);
}

TEST(ManageFailedNodeMsg, ShowsATitleAndFourRowsButNotTheTimeout) {
    ManageFailedNodeMsg const message(operation(5), failedNode, ZResult::success, ManageFailedNodeStatus::removed, 9);
    EXPECT_EQ(shown(message), (StringVecVec{{"Manage Failed Node"},
                                            {"Operation:", "remove|force"},
                                            {"Address:", "c0ffee01:7"},
                                            {"Result:", "success"},
                                            {"Status:", "removed"}}));
}

} // namespace
} // namespace zorv
