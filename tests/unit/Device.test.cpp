// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/Device.h"

#include "platform/libtransport/SerialValue.h"
#include "tests/support/errorOf.h"
#include "tests/support/golden.h"
#include "tests/support/json.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zorv {
namespace {

using Capabilities = Capability::Enum;
using Securities = Security::Enum;

Device deviceWith(int capability, int security) {
    NodeProtocolInfo const protocolInfo(static_cast<Capabilities>(capability), static_cast<Securities>(security),
                                        BasicDeviceType::slave, GenericDeviceType::switchBinary,
                                        SpecificDeviceType::notUsed);
    return {ZwaveAddress(0xC0FFEE01, 5), DeviceInfo(Manufacturer(), protocolInfo, true, false)};
}

std::string readError(std::string const& from, std::string const& to) {
    auto text = golden("Device");
    text.replace(text.find(from), from.size(), to);
    return errorOfReading(text);
}

TEST(Device, WritesItsGoldenTextAfterReadingIt) {
    auto const device = readBack<Device>(golden("Device"));
    EXPECT_EQ(toText(*device), golden("Device"));
}

TEST(Device, ReadsEveryMemberOfItsGoldenText) {
    auto const device = readBack<Device>(golden("Device"));
    EXPECT_EQ(device->address(), ZwaveAddress(0xC0FFEE01, 5));
    auto const& info = device->deviceInfo();
    EXPECT_EQ(static_cast<int>(info.manufacturer().manufacturerId()), 0x0123);
    EXPECT_EQ(info.manufacturer().productType(), 0x1234);
    EXPECT_EQ(info.manufacturer().productId(), 0x0102);
    EXPECT_EQ(static_cast<int>(info.protocolInfo().capability()), 0x53);
    EXPECT_EQ(static_cast<int>(info.protocolInfo().security()), 0x41);
    EXPECT_EQ(info.protocolInfo().basicDeviceType(), BasicDeviceType::routingSlave);
    EXPECT_EQ(info.protocolInfo().genericDeviceType(), GenericDeviceType::entryControl);
    EXPECT_EQ(static_cast<int>(info.protocolInfo().specificDeviceType()), 3);
    EXPECT_TRUE(info.isSlave());
    EXPECT_TRUE(info.isVirtual());
    EXPECT_EQ(device->deviceNetworkStatus(), DeviceNetworkStatus::online);
    EXPECT_EQ(device->deviceStatus(), DeviceStatus::ready);
    EXPECT_EQ(device->deviceLights(), DeviceLights::blinking);
    EXPECT_EQ(device->securityStatus(), SecurityStatus::s2AccessControl);
    EXPECT_EQ(device->wakeStatus(), WakeStatus::awake);
    EXPECT_EQ(device->configErrors(), 3);
    ASSERT_EQ(device->commandClasses().size(), 3U);
    auto const& doorLock = device->commandClasses().at(CommandClassType::doorLock);
    EXPECT_EQ(doorLock.classVersion(), 4);
    EXPECT_EQ(static_cast<int>(doorLock.attribs()), 5);
}

TEST(Device, IsEmptyByDefault) {
    EXPECT_EQ(
        toText(Device()),
        R"({"__name__":"zorv::Device","__bases__":[{"__name__":"zorv::Serializable","__bases__":[],"version_":1}],"address_":{"homeId_":0,"nodeId_":0},)"
        R"("deviceInfo_":{"manufacturer_":{"manufacturerId_":"unknown","productType_":0,"productId_":0},)"
        R"("protocolInfo_":{"capability_":"none|version0","security_":"none","basicDeviceType_":"unknown",)"
        R"("genericDeviceType_":"unknown","specificDeviceType_":"notUsed"},"isSlave_":false,"isVirtual_":false},)"
        R"("deviceNetworkStatus_":"unknown","deviceStatus_":"unknown","deviceLights_":"unknown",)"
        R"("securityStatus_":"unknown","wakeStatus_":"unknown","commandClasses_":[],"configErrors_":0})");
}

TEST(Device, KeepsTheDefaultOfEveryAbsentMember) { EXPECT_EQ(toText(*readBlank<Device>()), toText(Device())); }

TEST(Device, WritesItsCommandClassesInTheOrderOfTheirNumbers) {
    Device device;
    device.commandClass(CommandClassType::version, {3, CommandClassAttribs::supported});
    device.commandClass(CommandClassType::basic, {1, CommandClassAttribs::controlled});
    EXPECT_EQ(toText(toJson(device)["commandClasses_"]), R"([["basic",{"attribs_":"controlled","classVersion_":1}],)"
                                                         R"(["version",{"attribs_":"supported","classVersion_":3}]])");
}

TEST(Device, ReplacesACommandClassThatIsSetAgain) {
    Device device;
    device.commandClass(CommandClassType::version, {1, CommandClassAttribs::supported});
    device.commandClass(CommandClassType::version, {3, CommandClassAttribs::secure});
    ASSERT_EQ(device.commandClasses().size(), 1U);
    EXPECT_EQ(device.commandClasses().at(CommandClassType::version).classVersion(), 3);
}

TEST(Device, KeepsTheFirstOfTwoEqualCommandClassesThatItReads) {
    auto const device = readBack<Device>(R"({"__name__":"zorv::Device","commandClasses_":[)"
                                         R"(["basic",{"classVersion_":1}],["basic",{"classVersion_":2}]]})");
    ASSERT_EQ(device->commandClasses().size(), 1U);
    EXPECT_EQ(device->commandClasses().at(CommandClassType::basic).classVersion(), 1);
}

TEST(Device, RefusesCommandClassesThatAreNotAnArray) {
    EXPECT_EQ(readError(R"("commandClasses_":[[)", R"("commandClasses_":{},"x":[[)"),
              "SerializerError: commandClasses_: expected array, got object");
}

TEST(Device, RefusesACommandClassThatIsNotAPair) {
    EXPECT_EQ(readError(R"(["basic",)", R"("basic",[)"),
              "SerializerError: commandClasses_[0]: expected array, got string");
}

TEST(Device, NamesThePathToABadNumberInACommandClass) {
    EXPECT_EQ(readError(R"("classVersion_":4)", R"("classVersion_":256)"),
              "SerializerError: commandClasses_[1][1].classVersion_: expected unsigned byte, got 256");
}

TEST(Device, RefusesAnUnknownCommandClass) {
    EXPECT_EQ(readError(R"("doorLock")", R"("doorlock")"),
              "InvalidEnumError: commandClasses_[1][0]: invalid CommandClassType text \"doorlock\"");
}

TEST(Device, CanShareItselfAfterItWasReadIntoAPointer) {
    Serializer s(golden("Device"));
    boost::shared_ptr<Device> device;
    s >> device;
    EXPECT_EQ(device->shared_from_this(), device);
}

TEST(Device, IsListeningWithTheListeningBit) {
    auto const device = deviceWith(0x80, 0);
    EXPECT_TRUE(device.isListening());
    EXPECT_FALSE(device.isFrequentlyListening());
    EXPECT_FALSE(device.isSleeping());
}

TEST(Device, IsFrequentlyListeningWithEitherSensorBit) {
    for (int const security : {0x20, 0x40}) {
        auto const device = deviceWith(0, security);
        EXPECT_FALSE(device.isListening());
        EXPECT_TRUE(device.isFrequentlyListening());
        EXPECT_FALSE(device.isSleeping());
    }
}

TEST(Device, IsSleepingWithoutTheListeningAndTheSensorBits) {
    auto const device = deviceWith(0x7F, 0x9F);
    EXPECT_FALSE(device.isListening());
    EXPECT_FALSE(device.isFrequentlyListening());
    EXPECT_TRUE(device.isSleeping());
}

TEST(DeviceInfo, IsARepeaterOnlyWithTheRoutingAndTheListeningBit) {
    EXPECT_TRUE(deviceWith(0xC0, 0).deviceInfo().isRepeater());
    EXPECT_FALSE(deviceWith(0x80, 0).deviceInfo().isRepeater());
    EXPECT_FALSE(deviceWith(0x40, 0x20).deviceInfo().isRepeater());
    EXPECT_FALSE(deviceWith(0x00, 0).deviceInfo().isRepeater());
}

TEST(Device, ShowsEveryMember) {
    EXPECT_EQ(shown(*readBack<Device>(golden("Device"))), (StringVecVec{{"Address:", "c0ffee01:5"},
                                                                        {"Manufacturer id:", "0x0123"},
                                                                        {"Product type:", "1234"},
                                                                        {"Product id:", "0102"},
                                                                        {"Capability:", "baud40000|routing|version3"},
                                                                        {"Security:", "security|sensor1000ms"},
                                                                        {"Basic device type:", "routingSlave"},
                                                                        {"Generic device type:", "entryControl"},
                                                                        {"Specific device type:", "0x03"},
                                                                        {"Slave:", "1"},
                                                                        {"Virtual:", "1"},
                                                                        {"Repeater:", "0"},
                                                                        {"Device network status:", "online"},
                                                                        {"Device status:", "ready"},
                                                                        {"Device lights:", "blinking"},
                                                                        {"Security status:", "s2AccessControl"},
                                                                        {"Wake status:", "awake"},
                                                                        {"Command classes:", "3"},
                                                                        {"Configuration errors:", "3"}}));
}

TEST(Device, ShowsHowManyErrorsItHadWhateverItsCommandClasses) {
    auto const rows = shown(*readBack<Device>(R"({"__name__":"zorv::Device","configErrors_":7})"));
    EXPECT_THAT(rows, testing::Contains(StringVecVec::value_type{"Command classes:", "0"}));
    EXPECT_THAT(rows, testing::Contains(StringVecVec::value_type{"Configuration errors:", "7"}));
}

TEST(Manufacturer, HasASearchTypeOfItsThreeNumbersInHex) {
    EXPECT_EQ(Manufacturer(ManufacturerId::zorv, 1, 0x0102).searchType(), "023f:0001:0102");
    EXPECT_EQ(Manufacturer().searchType(), "0000:0000:0000");
}

TEST(Manufacturer, ShowsItsPrefixBeforeEachLabel) {
    EXPECT_EQ(shown(Manufacturer(ManufacturerId::zorv, 1, 0xABCD).prefix("Daemon ")),
              (StringVecVec{{"Daemon Manufacturer id:", "zorv"},
                            {"Daemon Product type:", "0001"},
                            {"Daemon Product id:", "abcd"}}));
}

TEST(Manufacturer, RefusesANumberOfMoreThanSixteenBits) {
    EXPECT_EQ(readError(R"("productId_":258)", R"("productId_":65536)"),
              "SerializerError: deviceInfo_.manufacturer_.productId_: expected unsigned short, got 65536");
}

} // namespace
} // namespace zorv
