// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/FirmwareUpdateMsg.h"

#include "platform/libtransport/throwInvalidEnum.h"
#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"

#include <gtest/gtest.h>

#include <boost/asio/ip/tcp.hpp>
#include <boost/make_shared.hpp>

#include <string>

namespace zorv {
namespace {

namespace Status = FirmwareUpdateStatus;

void expectMembers(FirmwareUpdateMsg const& message, ZResult::Enum result, std::string const& countryCode,
                   Status::Enum status, unsigned int percentComplete, unsigned int timeout) {
    EXPECT_EQ(message.result(), result);
    EXPECT_EQ(message.countryCode(), countryCode);
    EXPECT_EQ(message.status(), status);
    EXPECT_EQ(message.percentComplete(), percentComplete);
    EXPECT_EQ(message.timeout(), timeout);
}

TEST(FirmwareUpdateStatus, HasItsTexts) { expectTexts<Status::Enum>({"idle", "restart", "running", "complete"}); }

TEST(FirmwareUpdateStatus, RefusesTheTextInvalid) {
    EXPECT_EQ(errorOf([] { Status::toEnum("invalid"); }),
              "InvalidEnumError: invalid FirmwareUpdateStatus text \"invalid\"");
}

TEST(FirmwareUpdateMsg, HasATimeoutOf180) { EXPECT_EQ(FirmwareUpdateMsg::DEFAULT_TIMEOUT, 180U); }

TEST(FirmwareUpdateMsg, IsIdleWithoutAResultByDefault) {
    expectMembers(FirmwareUpdateMsg(), ZResult::none, "", Status::idle, 0, 180);
}

TEST(FirmwareUpdateMsg, TakesAllItsMembersAtOnce) {
    expectMembers(FirmwareUpdateMsg(ZResult::failure, "xx", Status::restart, 7, 90), ZResult::failure, "xx",
                  Status::restart, 7, 90);
}

TEST(FirmwareUpdateMsg, RequestCarriesTheResultOfSuccessAndNoRole) {
    auto const request = FirmwareUpdateMsg::create("xx");
    expectMembers(*request, ZResult::Enum(1), "xx", Status::idle, 0, 180);
    EXPECT_EQ(request->role(), MessageRole::none);
}

TEST(FirmwareUpdateMsg, RequestWithAStatusHasTheRoleOfARequest) {
    auto const request = FirmwareUpdateMsg::create("xx", Status::restart);
    expectMembers(*request, ZResult::Enum(1), "xx", Status::restart, 0, 180);
    EXPECT_EQ(request->role(), MessageRole::Enum(1));
}

TEST(FirmwareUpdateMsg, ReportOfARunningUpdateCarriesTheResultInProgress) {
    auto const report = FirmwareUpdateMsg::create(Status::running, 42);
    expectMembers(*report, ZResult::Enum(3), "", Status::running, 42, 180);
    EXPECT_EQ(report->role(), MessageRole::Enum(3));
}

TEST(FirmwareUpdateMsg, ReportOfAnyOtherStatusCarriesTheResultOfSuccess) {
    for (auto const status : {Status::idle, Status::restart, Status::complete}) {
        auto const report = FirmwareUpdateMsg::create(status, 100);
        expectMembers(*report, ZResult::Enum(1), "", status, 100, 180);
        EXPECT_EQ(report->role(), MessageRole::Enum(3));
    }
}

TEST(FirmwareUpdateMsg, ResponseTakesItsLastArgumentAsTimeoutAndTheCountryCodeFromItsRequest) {
    FirmwareUpdateMsg request(ZResult::success, "xx", Status::running, 33, 90);
    request.source({boost::asio::ip::address_v4(0xC0000207), 4711});
    auto const asked = boost::make_shared<FirmwareUpdateMsg>(request);
    auto const response = FirmwareUpdateMsg::create(asked, ZResult::failure, Status::complete, 50);
    expectMembers(*response, ZResult::failure, "xx", Status::complete, 0, 50);
    EXPECT_EQ(response->correlation(), request.id());
    EXPECT_EQ(response->source(), request.source());
    EXPECT_EQ(response->role(), MessageRole::none);
}

TEST(FirmwareUpdateMsg, RefusesToRespondToANullRequest) {
    boost::shared_ptr<FirmwareUpdateMsg> const none;
    EXPECT_EQ(errorOf([&] { FirmwareUpdateMsg::create(none, ZResult::success, Status::complete, 50); }),
              "NullPointerError: msg is null");
}

TEST(FirmwareUpdateMsg, WritesItsMembersInOrder) {
    FirmwareUpdateMsg const message(ZResult::success, "xx", Status::restart, 7, 90);
    EXPECT_EQ(ownMembers<Confirmable>(message),
              R"(,"countryCode_":"xx","status_":"restart","percentComplete_":7,"timeout_":90})");
}

TEST(FirmwareUpdateMsg, RefusesToWriteAStatusAboveComplete) {
    auto const message = FirmwareUpdateMsg::create(Status::Enum(4), 0);
    EXPECT_EQ(errorOf([&] { toText(*message); }), "InvalidEnumError: invalid FirmwareUpdateStatus value 4");
}

TEST(FirmwareUpdateMsg, RefusesAnUnknownStatus) {
    EXPECT_EQ(
        errorOf([] { readBack<FirmwareUpdateMsg>(R"({"__name__":"zorv::FirmwareUpdateMsg","status_":"Idle"})"); }),
        "InvalidEnumError: status_: invalid FirmwareUpdateStatus text \"Idle\"");
}

TEST(FirmwareUpdateMsg, ShowsCountryStatusAndProgressButNoResult) {
    FirmwareUpdateMsg const message(ZResult::inProgress, "xx", Status::running, 42, 90);
    EXPECT_EQ(shown(message),
              (StringVecVec{{"Country code:", "xx"}, {"Update status:", "running"}, {"Percent complete:", "42"}}));
}

} // namespace
} // namespace zorv
