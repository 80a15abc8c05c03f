// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/AddRemoveNodeMsg.h"

#include "platform/libtransport/throwInvalidEnum.h"
#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"
#include "tests/support/golden.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"

#include <boost/make_shared.hpp>

namespace zorv {
namespace {

boost::shared_ptr<Device> const device = boost::make_shared<Device>(ZwaveAddress(0xC0FFEE01, 5), DeviceInfo());

TEST(AddRemoveNodeMsg, HasTheDefaultsOfItsMembers) {
    AddRemoveNodeMsg const message;
    EXPECT_EQ(static_cast<int>(message.operation()), 0);
    EXPECT_FALSE(message.abort());
    EXPECT_FALSE(message.primary());
    EXPECT_EQ(message.timeout(), 0);
    EXPECT_FALSE(message.device());
    EXPECT_EQ(static_cast<int>(message.result()), 0);
}

TEST(AddRemoveNodeMsg, TakesItsMembersInTheOrderOfTheirDeclaration) {
    AddRemoveNodeMsg const message(AddRemoveOp::remove, true, false, ZResult::failure, -7, device);
    EXPECT_EQ(message.operation(), AddRemoveOp::remove);
    EXPECT_TRUE(message.abort());
    EXPECT_FALSE(message.primary());
    EXPECT_EQ(message.result(), ZResult::failure);
    EXPECT_EQ(message.timeout(), -7);
    EXPECT_EQ(message.device(), device);
}

TEST(AddRemoveNodeMsg, ReadsEveryMemberOfItsGoldenText) {
    auto const message = readBack<AddRemoveNodeMsg>(golden("AddRemoveNodeMsg"));
    EXPECT_EQ(message->operation(), AddRemoveOp::remove);
    EXPECT_TRUE(message->abort());
    EXPECT_TRUE(message->primary());
    EXPECT_EQ(message->timeout(), 60);
    ASSERT_TRUE(message->device());
    EXPECT_EQ(message->device()->address(), ZwaveAddress(0xC0FFEE01, 5));
    EXPECT_EQ(message->result(), ZResult::success);
}

TEST(AddRemoveNodeMsg, RequestWritesItsPrimaryFlagAndANullDevice) {
    auto const request = AddRemoveNodeMsg::create(AddRemoveOp::add, false, ZResult::inProgress, 60, true);
    EXPECT_EQ(request->result(), ZResult::inProgress);
    EXPECT_EQ(ownMembers<Confirmable>(*request),
              R"(,"operation_":"add","abort_":false,"primary_":true,"timeout_":60,"device_":null})");
}

TEST(AddRemoveNodeMsg, ResponseRepeatsOperationAndAbortButNotThePrimaryFlagOrTheTimeout) {
    auto const request = AddRemoveNodeMsg::create(AddRemoveOp::add, false, ZResult::none, 60, true);
    auto const response = AddRemoveNodeMsg::create(request, ZResult::success, 90, device);
    EXPECT_EQ(response->result(), ZResult::success);
    EXPECT_EQ(ownMembers<Confirmable>(*response),
              R"(,"operation_":"add","abort_":false,"primary_":false,"timeout_":90,"device_":)" + toText(*device) +
                  "}");
}

TEST(AddRemoveNodeMsg, ResponseToAnAbortIsAnAbort) {
    auto const request = AddRemoveNodeMsg::create(AddRemoveOp::remove, true, ZResult::none, 60, false);
    auto const response = AddRemoveNodeMsg::create(request, ZResult::success, 0, nullptr);
    EXPECT_TRUE(response->abort());
    EXPECT_EQ(response->operation(), AddRemoveOp::remove);
    EXPECT_FALSE(response->device());
}

TEST(AddRemoveNodeMsg, ResponseIsLinkedToItsRequest) {
    auto const request = AddRemoveNodeMsg::create(AddRemoveOp::add, false, ZResult::none, 60, true);
    auto const response = AddRemoveNodeMsg::create(request, ZResult::success, 90, device);
    EXPECT_EQ(response->correlation(), request->id());
    EXPECT_NE(response->id(), request->id());
}

TEST(AddRemoveNodeMsg, RefusesToRespondToANullRequest) {
    EXPECT_EQ(errorOf([] { AddRemoveNodeMsg::create(nullptr, ZResult::success, 90, device); }),
              "NullPointerError: msg is null");
}

TEST(AddRemoveNodeMsg, SharesItsDeviceWithItsClone) {
    AddRemoveNodeMsg const message(AddRemoveOp::add, false, false, ZResult::none, 0, device);
    auto const clone = boost::dynamic_pointer_cast<AddRemoveNodeMsg>(message.clone());
    ASSERT_TRUE(clone);
    EXPECT_EQ(clone->device().get(), device.get());
}

TEST(AddRemoveNodeMsg, AddsNoRowsWithoutADevice) {
    EXPECT_EQ(shown(AddRemoveNodeMsg(), {{"before"}}), (StringVecVec{{"before"}}));
}

TEST(AddRemoveNodeMsg, AddsTheRowsOfItsDevice) {
    auto const rows = shown(AddRemoveNodeMsg(AddRemoveOp::add, false, false, ZResult::none, 0, device));
    EXPECT_EQ(rows, shown(*device));
    EXPECT_EQ(rows.at(0), (std::vector<std::string>{"Address:", "c0ffee01:5"}));
}

TEST(AddRemoveNodeMsg, ReadsTheOperationInvalidAsZero) {
    auto const message = readBack<AddRemoveNodeMsg>(R"({"__name__":"zorv::AddRemoveNodeMsg","operation_":"invalid"})");
    EXPECT_EQ(static_cast<int>(message->operation()), 0);
}

TEST(AddRemoveNodeMsg, RefusesAnOperationInOtherLetterCase) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::AddRemoveNodeMsg","operation_":"Add"})"),
              "InvalidEnumError: operation_: invalid AddRemoveOp text \"Add\"");
}

TEST(AddRemoveNodeMsg, KeepsEveryMemberOnTheWireWithoutADevice) {
    AddRemoveNodeMsg const message(AddRemoveOp::remove, true, true, ZResult::timeout, 2147483647, nullptr);
    auto const rebuilt = readBack<AddRemoveNodeMsg>(toText(message));
    EXPECT_FALSE(rebuilt->device());
    EXPECT_EQ(toText(*rebuilt), toText(message));
}

TEST(AddRemoveNodeMsg, HasNoDeviceWhenTheTextHoldsAnObjectOfAnotherClass) {
    auto const message = readBack<AddRemoveNodeMsg>(
        R"({"__name__":"zorv::AddRemoveNodeMsg","device_":{"__name__":"zorv::RawCommand","data_":[]}})");
    EXPECT_FALSE(message->device());
}

TEST(AddRemoveOp, HasItsThreeTexts) { expectTexts<AddRemoveOp::Enum>({"invalid", "add", "remove"}); }

TEST(AddRemoveOp, ParsesAddAsOneAndRefusesCapitalsAndAnEmptyText) {
    EXPECT_EQ(static_cast<int>(AddRemoveOp::toEnum("add")), 1);
    EXPECT_EQ(errorOf([] { AddRemoveOp::toEnum("ADD"); }), "InvalidEnumError: invalid AddRemoveOp text \"ADD\"");
    EXPECT_EQ(errorOf([] { AddRemoveOp::toEnum(""); }), "InvalidEnumError: invalid AddRemoveOp text \"\"");
}

TEST(AddRemoveOp, ParsesOnlyTheFirstOfTwoWords) { EXPECT_EQ(AddRemoveOp::toEnum("add remove"), AddRemoveOp::add); }

TEST(AddRemoveOp, RefusesToWriteTheNumberSeven) {
    EXPECT_EQ(errorOf([] { AddRemoveOp::toString(static_cast<AddRemoveOp::Enum>(7)); }),
              "InvalidEnumError: invalid AddRemoveOp value 7");
}

TEST(AddRemoveOp, WritesNothingBeforeItRefusesANumber) {
    std::ostringstream os;
    os << "before ";
    EXPECT_THROW(os << static_cast<AddRemoveOp::Enum>(3), InvalidEnumError);
    EXPECT_EQ(os.str(), "before ");
}

TEST(AddRemoveOp, HasAHexFormOfTwoDigits) { EXPECT_EQ(AddRemoveOp::toHex(AddRemoveOp::remove), "02"); }

} // namespace
} // namespace zorv
