// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SystemStatusEvt.h"

#include "tests/support/errorOf.h"
#include "tests/support/wire.h"

#include <boost/make_shared.hpp>

namespace zorv {
namespace {

TEST(SystemStatusEvt, IsConfirmableAlthoughAnEvent) {
    EXPECT_EQ(ownMembers<Confirmable>(SystemStatusEvt()), R"(,"status_":"unknown"})");
    EXPECT_TRUE(boost::dynamic_pointer_cast<SystemStatusEvt>(SystemStatusEvt(SystemStatus::ready).clone()));
}

TEST(SystemStatusEvt, MadeByTheConstructorHasNeitherRoleNorResult) {
    SystemStatusEvt const event(SystemStatus::ready);
    EXPECT_EQ(event.role(), 0);
    EXPECT_EQ(event.result(), 0);
    EXPECT_EQ(event.status(), SystemStatus::ready);
}

TEST(SystemStatusEvt, AnnouncementHasRole3AndResult1) {
    auto const announcement = SystemStatusEvt::create(SystemStatus::stopping);
    EXPECT_EQ(announcement->role(), 3);
    EXPECT_EQ(announcement->result(), 1);
    EXPECT_EQ(announcement->status(), SystemStatus::stopping);
}

TEST(SystemStatusEvt, AnswerHasResult1AndNoRole) {
    auto const request = boost::make_shared<SystemStatusEvt>(SystemStatus::starting);
    request->role(MessageRole::request);
    auto const answer = SystemStatusEvt::create(request, SystemStatus::ready);
    EXPECT_EQ(answer->result(), 1);
    EXPECT_EQ(answer->role(), 0);
    EXPECT_EQ(answer->status(), SystemStatus::ready);
    EXPECT_EQ(answer->correlation(), request->id());
}

TEST(SystemStatusEvt, RefusesToRespondToANullRequest) {
    EXPECT_EQ(errorOf([] { SystemStatusEvt::create(boost::shared_ptr<SystemStatusEvt>(), SystemStatus::ready); }),
              "NullPointerError: msg is null");
}

TEST(SystemStatusEvt, RefusesAnUnknownStatus) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::SystemStatusEvt","status_":"Ready"})"),
              R"(InvalidEnumError: status_: invalid SystemStatus text "Ready")");
}

} // namespace
} // namespace zorv
