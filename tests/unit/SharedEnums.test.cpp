// SPDX-License-Identifier: Apache-2.0
// The numbers and texts of the shared enumerations, written down a second time. Peers, modules and nodes exchange them,
// so they must not change with the code.

#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"

#include "platform/libtransport/throwInvalidEnum.h"
#include "platform/libzorvshared/BasicDeviceType.h"
#include "platform/libzorvshared/Capability.h"
#include "platform/libzorvshared/CommandClassAttribs.h"
#include "platform/libzorvshared/CommandClassType.h"
#include "platform/libzorvshared/ControllerCapabilities.h"
#include "platform/libzorvshared/ControllerRole.h"
#include "platform/libzorvshared/DeviceLights.h"
#include "platform/libzorvshared/DeviceNetworkStatus.h"
#include "platform/libzorvshared/DeviceStatus.h"
#include "platform/libzorvshared/GenericDeviceType.h"
#include "platform/libzorvshared/LearnMode.h"
#include "platform/libzorvshared/LearnModeStatus.h"
#include "platform/libzorvshared/ManufacturerId.h"
#include "platform/libzorvshared/ModuleType.h"
#include "platform/libzorvshared/ObserveAction.h"
#include "platform/libzorvshared/ObserveDirection.h"
#include "platform/libzorvshared/RequestNeighborUpdateStatus.h"
#include "platform/libzorvshared/RequestNetworkUpdateStatus.h"
#include "platform/libzorvshared/Security.h"
#include "platform/libzorvshared/SecurityStatus.h"
#include "platform/libzorvshared/SocketActor.h"
#include "platform/libzorvshared/SpecificDeviceType.h"
#include "platform/libzorvshared/SystemStatus.h"
#include "platform/libzorvshared/TransmitOption.h"
#include "platform/libzorvshared/WakeStatus.h"
#include "platform/libzorvshared/ZwApiCommand.h"

#include <gtest/gtest.h>

#include <utility>

namespace zorv {
namespace {

/// Expects both directions of some numbers and their texts.
template <class Enum> void expectPairs(std::vector<std::pair<int, std::string>> const& pairs) {
    for (auto const& [number, text] : pairs) {
        EXPECT_EQ(toString(static_cast<Enum>(number)), text);
        auto read = static_cast<Enum>(number + 1);
        parse(text, read);
        EXPECT_EQ(static_cast<int>(read), number) << text;
    }
}

template <class Enum> std::string writeError(int number) {
    return errorOf([&] { toString(static_cast<Enum>(number)); });
}

template <class Enum> std::string readError(std::string const& text) {
    return errorOf([&] {
        Enum value{};
        parse(text, value);
    });
}

/// Expects every number of an open set to be read back from what is written for it.
template <class Enum> void expectOpenBelow(int end) {
    for (int number = 0; number < end; ++number) {
        auto read = static_cast<Enum>(number + 1);
        parse(toString(static_cast<Enum>(number)), read);
        ASSERT_EQ(static_cast<int>(read), number);
    }
}

TEST(TransmitOption, HasTheBitsOfTheSerialInterface) {
    expectPairs<TransmitOption::Enum>({{0x00, "none"},
                                       {0x01, "ack"},
                                       {0x02, "lowPower"},
                                       {0x04, "autoRoute"},
                                       {0x10, "noRoute"},
                                       {0x20, "explore"},
                                       {0x37, "ack|lowPower|autoRoute|noRoute|explore"}});
}

TEST(TransmitOption, WritesTheDefaultOptionsAsTheirThreeTexts) {
    EXPECT_EQ(static_cast<int>(TransmitOption::defaultOptions), 37);
    expectPairs<TransmitOption::Enum>({{37, "ack|autoRoute|explore"}});
}

TEST(TransmitOption, RefusesBitsAndTextsThatItDoesNotKnow) {
    EXPECT_EQ(writeError<TransmitOption::Enum>(0x09), "InvalidEnumError: invalid TransmitOption value 9");
    EXPECT_EQ(writeError<TransmitOption::Enum>(0x40), "InvalidEnumError: invalid TransmitOption value 64");
    EXPECT_EQ(readError<TransmitOption::Enum>("explore|ack"),
              "InvalidEnumError: invalid TransmitOption text \"explore|ack\"");
    EXPECT_EQ(readError<TransmitOption::Enum>("Ack"), "InvalidEnumError: invalid TransmitOption text \"Ack\"");
}

TEST(ZwApiCommand, HasTheFunctionIdsOfTheSerialInterface) {
    expectPairs<ZwApiCommand::Enum>({{0x00, "none"},
                                     {0x02, "serialApiGetInitData"},
                                     {0x03, "serialApiApplNodeInformation"},
                                     {0x04, "applicationCommandHandler"},
                                     {0x05, "getControllerCapabilities"},
                                     {0x06, "serialApiSetTimeouts"},
                                     {0x07, "serialApiGetCapabilities"},
                                     {0x08, "serialApiSoftReset"},
                                     {0x12, "sendNodeInformation"},
                                     {0x13, "sendData"},
                                     {0x14, "sendDataMulti"},
                                     {0x15, "getVersion"},
                                     {0x16, "sendDataAbort"},
                                     {0x20, "memoryGetId"},
                                     {0x2A, "nvmExtReadLongBuffer"},
                                     {0x41, "getNodeProtocolInfo"},
                                     {0x42, "setDefault"},
                                     {0x48, "requestNodeNeighborUpdate"},
                                     {0x49, "applicationUpdate"},
                                     {0x4A, "addNodeToNetwork"},
                                     {0x4B, "removeNodeFromNetwork"},
                                     {0x50, "setLearnMode"},
                                     {0x53, "requestNetworkUpdate"},
                                     {0x56, "getSucNodeId"},
                                     {0x60, "requestNodeInfo"},
                                     {0x61, "removeFailedNode"},
                                     {0x62, "isFailedNode"},
                                     {0x63, "replaceFailedNode"},
                                     {0x80, "getRoutingInfo"},
                                     {0xBD, "typeLibrary"},
                                     {0xD3, "watchdogStop"}});
}

TEST(ZwApiCommand, WritesAFunctionWithoutANameAsTwoHexDigits) {
    expectPairs<ZwApiCommand::Enum>({{0x01, "0x01"}, {0xF0, "0xf0"}, {0xFF, "0xff"}});
    expectOpenBelow<ZwApiCommand::Enum>(0x100);
}

TEST(ZwApiCommand, WritesANumberBeyondAByteWithAsManyDigitsAsItNeeds) {
    expectPairs<ZwApiCommand::Enum>({{0x100, "0x100"}, {0x1234, "0x1234"}, {0x7FFFFFFE, "0x7ffffffe"}});
}

TEST(ZwApiCommand, RefusesWhatIsNoNumber) {
    EXPECT_EQ(readError<ZwApiCommand::Enum>("0x123456789"),
              "InvalidEnumError: invalid ZwApiCommand text \"0x123456789\"");
    EXPECT_EQ(readError<ZwApiCommand::Enum>("0xg0"), "InvalidEnumError: invalid ZwApiCommand text \"0xg0\"");
}

TEST(CommandClassType, HasThePublicCommandClassIds) {
    expectPairs<CommandClassType::Enum>({{0x00, "noOperation"},
                                         {0x20, "basic"},
                                         {0x25, "switchBinary"},
                                         {0x26, "switchMultilevel"},
                                         {0x30, "sensorBinary"},
                                         {0x31, "sensorMultilevel"},
                                         {0x32, "meter"},
                                         {0x40, "thermostatMode"},
                                         {0x43, "thermostatSetpoint"},
                                         {0x56, "crc16Encap"},
                                         {0x59, "associationGrpInfo"},
                                         {0x5A, "deviceResetLocally"},
                                         {0x5E, "zwavePlusInfo"},
                                         {0x60, "multiChannel"},
                                         {0x62, "doorLock"},
                                         {0x63, "userCode"},
                                         {0x6C, "supervision"},
                                         {0x70, "configuration"},
                                         {0x71, "notification"},
                                         {0x72, "manufacturerSpecific"},
                                         {0x73, "powerlevel"},
                                         {0x7A, "firmwareUpdateMd"},
                                         {0x80, "battery"},
                                         {0x84, "wakeUp"},
                                         {0x85, "association"},
                                         {0x86, "version"},
                                         {0x8E, "multiChannelAssociation"},
                                         {0x98, "security"},
                                         {0x9F, "security2"},
                                         {0xEF, "mark"}});
}

TEST(CommandClassType, WritesAClassWithoutANameAsTwoHexDigits) {
    expectPairs<CommandClassType::Enum>({{0x01, "0x01"}, {0x7F, "0x7f"}, {0xFF, "0xff"}});
    expectOpenBelow<CommandClassType::Enum>(0x100);
    EXPECT_EQ(writeError<CommandClassType::Enum>(256), "InvalidEnumError: invalid CommandClassType value 256");
}

TEST(CommandClassAttribs, IsASetOfThreeFlags) {
    expectPairs<CommandClassAttribs::Enum>(
        {{0, "none"}, {1, "supported"}, {2, "controlled"}, {4, "secure"}, {7, "supported|controlled|secure"}});
    EXPECT_EQ(writeError<CommandClassAttribs::Enum>(8), "InvalidEnumError: invalid CommandClassAttribs value 8");
    EXPECT_EQ(readError<CommandClassAttribs::Enum>("secret"),
              "InvalidEnumError: invalid CommandClassAttribs text \"secret\"");
}

TEST(ManufacturerId, NamesNoMakerButOurselves) {
    expectPairs<ManufacturerId::Enum>(
        {{0, "unknown"}, {575, "zorv"}, {1, "0x0001"}, {576, "0x0240"}, {65535, "0xffff"}});
    expectOpenBelow<ManufacturerId::Enum>(0x10000);
}

TEST(ManufacturerId, RefusesWhatHasMoreThanSixteenBits) {
    EXPECT_EQ(writeError<ManufacturerId::Enum>(65536), "InvalidEnumError: invalid ManufacturerId value 65536");
    EXPECT_EQ(readError<ManufacturerId::Enum>("acme"), "InvalidEnumError: invalid ManufacturerId text \"acme\"");
}

TEST(BasicDeviceType, IsAnOpenSet) {
    expectTexts<BasicDeviceType::Enum>({"unknown", "controller", "staticController", "slave", "routingSlave", "0x05"});
    expectOpenBelow<BasicDeviceType::Enum>(0x100);
    EXPECT_EQ(readError<BasicDeviceType::Enum>("Slave"), "InvalidEnumError: invalid BasicDeviceType text \"Slave\"");
}

TEST(GenericDeviceType, IsAnOpenSet) {
    expectPairs<GenericDeviceType::Enum>({{0x00, "unknown"},
                                          {0x01, "genericController"},
                                          {0x02, "staticController"},
                                          {0x08, "thermostat"},
                                          {0x0F, "repeaterSlave"},
                                          {0x10, "switchBinary"},
                                          {0x11, "switchMultilevel"},
                                          {0x18, "wallController"},
                                          {0x20, "sensorBinary"},
                                          {0x21, "sensorMultilevel"},
                                          {0x31, "meter"},
                                          {0x40, "entryControl"},
                                          {0xA1, "sensorAlarm"},
                                          {0xFF, "nonInteroperable"},
                                          {0x0A, "0x0a"}});
    expectOpenBelow<GenericDeviceType::Enum>(0x100);
    EXPECT_EQ(writeError<GenericDeviceType::Enum>(256), "InvalidEnumError: invalid GenericDeviceType value 256");
}

TEST(SpecificDeviceType, HasAMeaningOfItsOwnOnlyForZero) {
    expectPairs<SpecificDeviceType::Enum>({{0, "notUsed"}, {1, "0x01"}, {255, "0xff"}});
    expectOpenBelow<SpecificDeviceType::Enum>(0x100);
    EXPECT_EQ(writeError<SpecificDeviceType::Enum>(256), "InvalidEnumError: invalid SpecificDeviceType value 256");
}

TEST(Capability, WritesTheFlagsOfTheByteAndThenItsProtocolVersion) {
    expectPairs<Capability::Enum>({{0x00, "none|version0"},
                                   {0x04, "none|version4"},
                                   {0x53, "baud40000|routing|version3"},
                                   {0xD3, "baud40000|routing|listening|version3"},
                                   {0xFF, "baud9600|baud40000|baudReserved|routing|listening|version7"}});
}

TEST(Capability, WritesAndReadsEveryByte) { expectOpenBelow<Capability::Enum>(0x100); }

TEST(Capability, RefusesWhatIsNoByte) {
    EXPECT_EQ(writeError<Capability::Enum>(0x100), "InvalidEnumError: invalid Capability value 256");
    EXPECT_EQ(readError<Capability::Enum>("listening|version8"),
              "InvalidEnumError: invalid Capability text \"listening|version8\"");
}

TEST(ProtocolVersion, HasTheEightNumbersOfThreeBits) {
    expectTexts<ProtocolVersion::Enum>(
        {"version0", "version1", "version2", "version3", "version4", "version5", "version6", "version7"});
    EXPECT_EQ(writeError<ProtocolVersion::Enum>(8), "InvalidEnumError: invalid ProtocolVersion value 8");
}

TEST(Security, HasTheBitsOfTheNodesSecondByte) {
    expectPairs<Security::Enum>({{0x00, "none"},
                                 {0x01, "security"},
                                 {0x02, "controller"},
                                 {0x04, "specificDeviceType"},
                                 {0x08, "routingSlave"},
                                 {0x10, "beamCapability"},
                                 {0x20, "sensor250ms"},
                                 {0x40, "sensor1000ms"},
                                 {0x80, "optionalFunctionality"},
                                 {0x9C, "specificDeviceType|routingSlave|beamCapability|optionalFunctionality"}});
    expectOpenBelow<Security::Enum>(0x100);
    EXPECT_EQ(writeError<Security::Enum>(0x100), "InvalidEnumError: invalid Security value 256");
}

TEST(ModuleType, HasTheLibraryTypesOfTheSerialInterface) {
    expectTexts<ModuleType::Enum>({"none", "staticController", "portableController", "enhancedSlave", "slave",
                                   "installer", "routingSlave", "bridgeController", "deviceUnderTest"});
    expectPairs<ModuleType::Enum>({{10, "avRemote"}, {11, "avDevice"}, {255, "unknown"}});
    EXPECT_EQ(writeError<ModuleType::Enum>(9), "InvalidEnumError: invalid ModuleType value 9");
    EXPECT_EQ(readError<ModuleType::Enum>("0xff"), "InvalidEnumError: invalid ModuleType text \"0xff\"");
}

TEST(ControllerCapabilities, HasTheBitsOfTheSerialInterface) {
    expectPairs<ControllerCapabilities::Enum>({{0x00, "none"},
                                               {0x01, "secondary"},
                                               {0x02, "onOtherNetwork"},
                                               {0x04, "sisPresent"},
                                               {0x08, "wasRealPrimary"},
                                               {0x10, "suc"},
                                               {0x20, "noNodesIncluded"},
                                               {0x1C, "sisPresent|wasRealPrimary|suc"}});
    EXPECT_EQ(writeError<ControllerCapabilities::Enum>(0x40),
              "InvalidEnumError: invalid ControllerCapabilities value 64");
}

TEST(ControllerRole, HasItsTexts) {
    expectTexts<ControllerRole::Enum>({"unknown", "primary", "secondary", "inclusion", "suc", "sis"});
    EXPECT_EQ(writeError<ControllerRole::Enum>(6), "InvalidEnumError: invalid ControllerRole value 6");
}

TEST(LearnMode, HasTheModesOfTheSerialInterface) {
    expectTexts<LearnMode::Enum>({"disabled", "classic", "networkWideInclusion", "networkWideExclusion"});
    EXPECT_EQ(writeError<LearnMode::Enum>(4), "InvalidEnumError: invalid LearnMode value 4");
}

TEST(LearnModeStatus, HasTheStatesOfTheSerialInterface) {
    expectPairs<LearnModeStatus::Enum>({{0, "none"}, {1, "started"}, {6, "done"}, {7, "failed"}, {0x80, "deleted"}});
    EXPECT_EQ(writeError<LearnModeStatus::Enum>(2), "InvalidEnumError: invalid LearnModeStatus value 2");
}

TEST(RequestNeighborUpdateStatus, HasTheStatesOfTheSerialInterface) {
    expectPairs<RequestNeighborUpdateStatus::Enum>({{0, "none"}, {0x21, "started"}, {0x22, "done"}, {0x23, "failed"}});
    EXPECT_EQ(writeError<RequestNeighborUpdateStatus::Enum>(0x24),
              "InvalidEnumError: invalid RequestNeighborUpdateStatus value 36");
}

TEST(RequestNetworkUpdateStatus, HasTheStatesOfTheSerialInterface) {
    expectTexts<RequestNetworkUpdateStatus::Enum>({"done", "abort", "wait", "disabled", "overflow"});
    EXPECT_EQ(writeError<RequestNetworkUpdateStatus::Enum>(5),
              "InvalidEnumError: invalid RequestNetworkUpdateStatus value 5");
}

TEST(DeviceLights, HasATextForItsDefaultFour) {
    expectTexts<DeviceLights::Enum>({"off", "on", "blinking", "blinkingFast", "unknown"});
    EXPECT_EQ(writeError<DeviceLights::Enum>(5), "InvalidEnumError: invalid DeviceLights value 5");
}

TEST(DeviceStatus, HasItsTexts) {
    expectTexts<DeviceStatus::Enum>({"unknown", "configuring", "ready", "incomplete", "fault"});
    EXPECT_EQ(writeError<DeviceStatus::Enum>(5), "InvalidEnumError: invalid DeviceStatus value 5");
}

TEST(DeviceNetworkStatus, HasItsTexts) {
    expectTexts<DeviceNetworkStatus::Enum>({"unknown", "online", "offline", "failed"});
    EXPECT_EQ(writeError<DeviceNetworkStatus::Enum>(4), "InvalidEnumError: invalid DeviceNetworkStatus value 4");
}

TEST(WakeStatus, HasItsTexts) {
    expectTexts<WakeStatus::Enum>({"unknown", "awake", "asleep"});
    EXPECT_EQ(writeError<WakeStatus::Enum>(3), "InvalidEnumError: invalid WakeStatus value 3");
}

TEST(SecurityStatus, HasItsTexts) {
    expectTexts<SecurityStatus::Enum>({"unknown", "insecure", "bootstrapping", "s0", "s2Unauthenticated",
                                       "s2Authenticated", "s2AccessControl", "failed"});
    EXPECT_EQ(writeError<SecurityStatus::Enum>(8), "InvalidEnumError: invalid SecurityStatus value 8");
}

TEST(ObserveAction, HasItsTexts) {
    expectTexts<ObserveAction::Enum>({"none", "start", "stop"});
    EXPECT_EQ(writeError<ObserveAction::Enum>(3), "InvalidEnumError: invalid ObserveAction value 3");
}

TEST(ObserveDirection, HasItsTexts) {
    expectTexts<ObserveDirection::Enum>({"none", "received", "sent"});
    EXPECT_EQ(writeError<ObserveDirection::Enum>(3), "InvalidEnumError: invalid ObserveDirection value 3");
}

TEST(SocketActor, HasItsTexts) {
    expectTexts<SocketActor::Enum>({"none", "client", "server"});
    EXPECT_EQ(writeError<SocketActor::Enum>(3), "InvalidEnumError: invalid SocketActor value 3");
}

TEST(SystemStatus, HasItsTexts) {
    expectTexts<SystemStatus::Enum>({"unknown", "starting", "ready", "degraded", "updating", "stopping"});
    EXPECT_EQ(writeError<SystemStatus::Enum>(6), "InvalidEnumError: invalid SystemStatus value 6");
}

} // namespace
} // namespace zorv
