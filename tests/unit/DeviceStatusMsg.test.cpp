// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/DeviceStatusMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"

namespace zorv {
namespace {

ZwaveAddress const node5(0xC0FFEE01U, 5);
ZwaveAddress const node6(0xC0FFEE01U, 6);
boost::shared_ptr<DeviceStatusMsg> const noRequest;

boost::shared_ptr<DeviceStatusMsg> report() {
    return DeviceStatusMsg::create(node5, DeviceNetworkStatus::online, DeviceStatus::configuring, DeviceLights::on,
                                   SecurityStatus::s0, WakeStatus::asleep, MessageRole::report);
}

std::string const reportMembers = R"(,"address_":{"homeId_":3237998081,"nodeId_":5},"deviceNetworkStatus_":"online",)"
                                  R"("deviceStatus_":"configuring","deviceLights_":"on","securityStatus_":"s0",)"
                                  R"("wakeStatus_":"asleep"})";

TEST(DeviceStatusMsg, DefaultWritesTheTextOfLights4) {
    DeviceStatusMsg const message;
    EXPECT_EQ(message.deviceLights(), 4);
    EXPECT_EQ(ownMembers<Confirmable>(message),
              R"(,"address_":{"homeId_":0,"nodeId_":0},"deviceNetworkStatus_":"unknown","deviceStatus_":"unknown",)"
              R"("deviceLights_":"unknown","securityStatus_":"unknown","wakeStatus_":"unknown"})");
    EXPECT_EQ(message.result(), 0);
    EXPECT_EQ(message.role(), 0);
}

TEST(DeviceStatusMsg, ReaderStartsFromLights4) { EXPECT_EQ(readBlank<DeviceStatusMsg>()->deviceLights(), 4); }

TEST(DeviceStatusMsg, RequestHasLights0AndTheGivenRole) {
    auto const request = DeviceStatusMsg::create(node5, MessageRole::request);
    EXPECT_EQ(request->address(), node5);
    EXPECT_EQ(request->deviceLights(), 0);
    EXPECT_EQ(request->deviceNetworkStatus(), 0);
    EXPECT_EQ(request->deviceStatus(), 0);
    EXPECT_EQ(request->securityStatus(), 0);
    EXPECT_EQ(request->wakeStatus(), 0);
    EXPECT_EQ(request->role(), MessageRole::request);
    EXPECT_EQ(request->result(), 0);
}

TEST(DeviceStatusMsg, ReportCarriesEveryFieldThatItIsGiven) {
    EXPECT_EQ(ownMembers<Confirmable>(*report()), reportMembers);
    EXPECT_EQ(report()->role(), MessageRole::report);
    EXPECT_EQ(report()->result(), 0);
}

TEST(DeviceStatusMsg, RepeatingAnswerCarriesTheRequestsStatusesAndRoleAndTheGivenResult) {
    auto const request = report();
    request->priority(Priority::high);
    auto const answer = DeviceStatusMsg::create(request, ZResult::nodeAsleep);
    EXPECT_EQ(ownMembers<Confirmable>(*answer), reportMembers);
    EXPECT_EQ(answer->role(), MessageRole::report);
    EXPECT_EQ(answer->result(), ZResult::nodeAsleep);
    EXPECT_EQ(answer->correlation(), request->id());
    EXPECT_EQ(answer->priority(), Priority::normal) << "a message of its own, not a copy";
}

TEST(DeviceStatusMsg, FilledAnswerAlwaysCarriesResult1) {
    auto const request = DeviceStatusMsg::create(node5, MessageRole::request);
    request->result(ZResult::failure);
    auto const answer =
        DeviceStatusMsg::create(request, node6, DeviceNetworkStatus::failed, DeviceStatus::fault, DeviceLights::off,
                                SecurityStatus::failed, WakeStatus::awake, MessageRole::response);
    EXPECT_EQ(answer->result(), 1);
    EXPECT_EQ(answer->address(), node6);
    EXPECT_EQ(answer->deviceNetworkStatus(), DeviceNetworkStatus::failed);
    EXPECT_EQ(answer->deviceStatus(), DeviceStatus::fault);
    EXPECT_EQ(answer->deviceLights(), DeviceLights::off);
    EXPECT_EQ(answer->securityStatus(), SecurityStatus::failed);
    EXPECT_EQ(answer->wakeStatus(), WakeStatus::awake);
    EXPECT_EQ(answer->role(), MessageRole::response);
    EXPECT_EQ(answer->correlation(), request->id());
}

TEST(DeviceStatusMsg, RefusesToRespondToANullRequest) {
    EXPECT_EQ(errorOf([] { DeviceStatusMsg::create(noRequest, ZResult::success); }), "NullPointerError: msg is null");
    EXPECT_EQ(errorOf([] {
                  DeviceStatusMsg::create(noRequest, node5, DeviceNetworkStatus::online, DeviceStatus::ready,
                                          DeviceLights::on, SecurityStatus::s0, WakeStatus::awake,
                                          MessageRole::response);
              }),
              "NullPointerError: msg is null");
}

TEST(DeviceStatusMsg, ShowsATitleAndSixRows) {
    EXPECT_EQ(shown(*report()), (StringVecVec{{"DeviceStatusMsg:"},
                                              {"Device address:", "c0ffee01:5"},
                                              {"Device network status:", "online"},
                                              {"Device status:", "configuring"},
                                              {"Device lights:", "on"},
                                              {"Security status:", "s0"},
                                              {"Wake status:", "asleep"}}));
}

TEST(DeviceStatusMsg, NamesTheEnumerationOfAnUnknownText) {
    for (auto const* const name :
         {"DeviceNetworkStatus", "DeviceStatus", "DeviceLights", "SecurityStatus", "WakeStatus"}) {
        std::string key = name;
        key[0] = static_cast<char>(key[0] - 'A' + 'a');
        EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::DeviceStatusMsg",")" + key + R"(_":"Nonsense"})"),
                  "InvalidEnumError: " + key + "_: invalid " + name + " text \"Nonsense\"");
    }
}

} // namespace
} // namespace zorv
