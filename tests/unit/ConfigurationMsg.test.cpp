// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ConfigurationMsg.h"

#include "platform/libzorvshared/Device.h"
#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"
#include "tests/support/wire.h"

#include <boost/make_shared.hpp>

namespace zorv {
namespace {

boost::shared_ptr<Device> const noDevice;

TEST(ConfigurationMsg, HasNoErrorsWithoutADevice) {
    EXPECT_EQ(ConfigurationMsg().configErrors(), 0);
    EXPECT_EQ(ConfigurationMsg(ConfigurationStatus::finish, noDevice, ZResult::success).configErrors(), 0);
}

TEST(ConfigurationMsg, HasTheErrorsOfItsDevice) {
    auto const device = boost::make_shared<Device>();
    device->configErrors(-2147483647);
    EXPECT_EQ(ConfigurationMsg(ConfigurationStatus::finish, device, ZResult::success).configErrors(), -2147483647);
}

TEST(ConfigurationMsg, WritesStatus13AsFinishAndRefuses14) {
    EXPECT_EQ(toString(static_cast<ConfigurationStatus::Enum>(13)), "finish");
    EXPECT_EQ(errorOf([] { toString(static_cast<ConfigurationStatus::Enum>(14)); }),
              "InvalidEnumError: invalid ConfigurationStatus value 14");
}

TEST(ConfigurationMsg, HasFourteenStages) {
    expectTexts<ConfigurationStatus::Enum>({"unknown", "idle", "start", "commandClasses", "version", "mfg", "security",
                                            "routes", "association", "multichannel", "wakeUp", "zwavePlus",
                                            "interrupted", "finish"});
}

TEST(ConfigurationMsg, MadeByCreateHasTheGivenResultAndRole3) {
    auto const device = boost::make_shared<Device>();
    auto const report = ConfigurationMsg::create(ConfigurationStatus::routes, device, ZResult::inProgress);
    EXPECT_EQ(report->operation(), ConfigurationStatus::routes);
    EXPECT_EQ(report->device(), device);
    EXPECT_EQ(report->result(), 3);
    EXPECT_EQ(report->role(), 3);
}

TEST(ConfigurationMsg, MadeByTheConstructorKeepsTheDefaultRole) {
    ConfigurationMsg const message(ConfigurationStatus::idle, noDevice, ZResult::failure);
    EXPECT_EQ(message.role(), 0);
    EXPECT_EQ(message.result(), 2);
}

TEST(ConfigurationMsg, WritesAnEmptyDeviceAsNullAndReadsItBack) {
    ConfigurationMsg const message;
    EXPECT_EQ(ownMembers<Confirmable>(message), R"(,"operation_":"unknown","device_":null})");
    EXPECT_FALSE(readBack<ConfigurationMsg>(toText(message))->device());
}

TEST(ConfigurationMsg, HasNoDeviceWhenTheTextHoldsAnObjectOfAnotherClass) {
    auto const message = readBack<ConfigurationMsg>(
        R"({"__name__":"zorv::ConfigurationMsg","device_":{"__name__":"zorv::Confirmable"}})");
    EXPECT_FALSE(message->device());
}

TEST(ConfigurationMsg, SharesItsDeviceWithItsCopies) {
    auto const device = boost::make_shared<Device>();
    ConfigurationMsg const message(ConfigurationStatus::idle, device, ZResult::none);
    EXPECT_EQ(boost::dynamic_pointer_cast<ConfigurationMsg>(message.clone())->device(), device);
}

TEST(ConfigurationMsg, ReadsADeviceThatCanShareItself) {
    auto const device = boost::make_shared<Device>();
    ConfigurationMsg const message(ConfigurationStatus::idle, device, ZResult::none);
    auto const back = readBack<ConfigurationMsg>(toText(message));
    EXPECT_EQ(back->device()->shared_from_this(), back->device());
}

TEST(ConfigurationMsg, RefusesAnUnknownStage) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::ConfigurationMsg","operation_":"Idle"})"),
              R"(InvalidEnumError: operation_: invalid ConfigurationStatus text "Idle")");
}

} // namespace
} // namespace zorv
