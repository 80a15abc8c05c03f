// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ControllerInfoMsg.h"

#include "platform/libtransport/throwInvalidEnum.h"
#include "platform/libzorvshared/KernelX.h"
#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"
#include "tests/support/golden.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"

#include <csignal>
#include <limits>
#include <locale>

namespace zorv {
namespace {

using Row = std::vector<std::string>;

auto const capabilities = static_cast<ControllerCapabilities::Enum>(0x1C);

SerialCapabilities serialCapabilities() {
    return {9,
            0x1A,
            static_cast<ManufacturerId::Enum>(0x0123),
            4,
            0xBEEF,
            {ZwApiCommand::sendData, ZwApiCommand::applicationCommandHandler, static_cast<ZwApiCommand::Enum>(0xFE),
             static_cast<ZwApiCommand::Enum>(0x10A)}};
}

DeviceInfo deviceInfo() {
    NodeProtocolInfo const protocolInfo(static_cast<Capability::Enum>(0xD3), static_cast<Security::Enum>(0x12),
                                        BasicDeviceType::staticController, GenericDeviceType::staticController,
                                        static_cast<SpecificDeviceType::Enum>(1));
    return {Manufacturer(ManufacturerId::zorv, 1, 2), protocolInfo, false, true};
}

ControllerInfoMsg info(ControllerInfoOption::Enum option, double uptime = 93784.25) {
    return {option,
            ModuleType::bridgeController,
            "7.19",
            0xFE,
            capabilities,
            ControllerRole::sis,
            serialCapabilities(),
            deviceInfo(),
            232,
            11,
            12,
            13,
            DeviceStatus::ready,
            SecurityStatus::s2AccessControl,
            uptime};
}

boost::shared_ptr<ControllerInfoMsg> report(ControllerInfoOption::Enum option) {
    return ControllerInfoMsg::create(option, ModuleType::bridgeController, "7.19", 0xFE, capabilities,
                                     ControllerRole::sis, serialCapabilities(), deviceInfo(), 232, 11, 12, 13,
                                     DeviceStatus::ready, SecurityStatus::s2AccessControl, 93784.25);
}

boost::shared_ptr<ControllerInfoMsg> answer(boost::shared_ptr<ControllerInfoMsg> const& request) {
    return ControllerInfoMsg::create(request, ControllerInfoOption::info, ModuleType::bridgeController, "7.19", 0xFE,
                                     capabilities, ControllerRole::sis, serialCapabilities(), deviceInfo(), 232, 11, 12,
                                     13, DeviceStatus::ready, SecurityStatus::s2AccessControl, 93784.25);
}

std::string shownUptime(double uptime) {
    for (auto const& row : shown(info(ControllerInfoOption::capabilities, uptime))) {
        if (row[0] == "Up time:") { return row.at(1); }
    }
    return "no row";
}

StringVecVec const capabilityRows{{"Capability:", "baud40000|routing|listening|version3"},
                                  {"Security:", "controller|beamCapability"},
                                  {"Basic device type:", "staticController"},
                                  {"Generic device type:", "staticController"},
                                  {"Specific device type:", "0x01"}};

StringVecVec const deviceRows{{"Manufacturer id:", "zorv"},
                              {"Product type:", "0001"},
                              {"Product id:", "0002"},
                              {"Capability:", "baud40000|routing|listening|version3"},
                              {"Security:", "controller|beamCapability"},
                              {"Basic device type:", "staticController"},
                              {"Generic device type:", "staticController"},
                              {"Specific device type:", "0x01"},
                              {"Slave:", "0"},
                              {"Virtual:", "1"},
                              {"Repeater:", "1"}};

StringVecVec const controllerRows{{"SUC node id:", "fe"},
                                  {"Controller role:", "sis"},
                                  {"Module type:", "bridgeController"},
                                  {"FW version:", "7.19"},
                                  {"Chip manufacturer id:", "0x0123"},
                                  {"Chip product type:", "0004"},
                                  {"Chip product id:", "beef"},
                                  {"Daemon Manufacturer id:", "zorv"},
                                  {"Daemon Product type:", "0001"},
                                  {"Daemon Product id:", "0002"},
                                  {"API version:", "09"},
                                  {"API revision:", "1a"},
                                  {"Node count:", "232"},
                                  {"Ota queue size:", "11"},
                                  {"Inprogress queue size:", "12"},
                                  {"Message queue size:", "13"},
                                  {"Device status:", "ready"},
                                  {"Security status:", "s2AccessControl"},
                                  {"Up time:", "1d 2h 3m 4.25s\n"}};

StringVecVec const commandRows{{"Supported Commands:"},
                               {"sendData", "0x13"},
                               {"applicationCommandHandler", "0x04"},
                               {"0xfe", "0xfe"},
                               {"0x10a", "0x10a"}};

StringVecVec concatenated(std::initializer_list<StringVecVec> tables) {
    StringVecVec rows;
    for (auto const& table : tables) { rows.insert(rows.end(), table.begin(), table.end()); }
    return rows;
}

// ---- enumeration

TEST(ControllerInfoOption, HasItsFourTexts) {
    expectTexts<ControllerInfoOption::Enum>({"capabilities", "commands", "info", "all"});
}

TEST(ControllerInfoOption, RefusesUnknownNumbersAndTexts) {
    EXPECT_EQ(errorOf([] { toString(static_cast<ControllerInfoOption::Enum>(4)); }),
              "InvalidEnumError: invalid ControllerInfoOption value 4");
    EXPECT_EQ(errorOf([] { ControllerInfoOption::toEnum("invalid"); }),
              "InvalidEnumError: invalid ControllerInfoOption text \"invalid\"");
}

// ---- forms

TEST(ControllerInfoMsg, HasTheDefaultsOfItsMembersAndDescribesADaemonOfThisMachine) {
    auto const productId = std::to_string(KernelX::GetSystemType());
    EXPECT_EQ(ownMembers<Confirmable>(ControllerInfoMsg()),
              R"(,"displayOptions_":"capabilities","moduleType_":"unknown","fwVersion_":"","sucNodeId_":0,)"
              R"("controllerCapabilities_":"none","controllerRole_":"unknown",)"
              R"("serialCapabilities_":{"apiVersion_":0,"apiRevision_":0,"manufacturerId_":"unknown",)"
              R"("productType_":0,"productId_":0,"commands_":[]},)"
              R"("deviceInfo_":{"manufacturer_":{"manufacturerId_":"zorv","productType_":0,"productId_":)" +
                  productId +
                  R"(},"protocolInfo_":{"capability_":"none|version0","security_":"none",)"
                  R"("basicDeviceType_":"unknown","genericDeviceType_":"unknown","specificDeviceType_":"notUsed"},)"
                  R"("isSlave_":false,"isVirtual_":false},"nodeCount_":0,"remoteQueueSize_":0,"jobsQueueSize_":0,)"
                  R"("workQueueSize_":0,"deviceStatus_":"unknown","securityStatus_":"unknown","uptime_":0})");
    EXPECT_EQ(static_cast<int>(ControllerInfoMsg().moduleType()), 255);
    EXPECT_EQ(static_cast<int>(ControllerInfoMsg().result()), 0);
}

TEST(ControllerInfoMsg, MadeWithoutArgumentsHasThePlatformsManufacturer) {
    auto const message = ControllerInfoMsg::create();
    auto const& manufacturer = message->deviceInfo().manufacturer();
    EXPECT_EQ(static_cast<int>(manufacturer.manufacturerId()), 575);
    EXPECT_EQ(manufacturer.productType(), 0);
    EXPECT_EQ(manufacturer.productId(), KernelX::GetSystemType());
    EXPECT_EQ(message->result(), ZResult::none);
}

TEST(ControllerInfoMsg, RequestHasModuleType255AndAnEmptyDeviceInfo) {
    auto const request = ControllerInfoMsg::create(ControllerInfoOption::all);
    EXPECT_EQ(request->displayOptions(), ControllerInfoOption::all);
    EXPECT_EQ(static_cast<int>(request->moduleType()), 255);
    EXPECT_EQ(toText(request->deviceInfo()), toText(DeviceInfo()));
    EXPECT_EQ(toText(request->serialCapabilities()), toText(SerialCapabilities()));
    EXPECT_EQ(request->fwVersion(), "");
    EXPECT_EQ(request->nodeCount(), 0U);
    EXPECT_EQ(request->uptime(), 0.0);
    EXPECT_EQ(static_cast<int>(request->result()), 0);
    EXPECT_EQ(request->role(), MessageRole::none);
}

TEST(ControllerInfoMsg, TakesItsFifteenMembersInTheOrderOfTheirDeclaration) {
    auto const message = info(ControllerInfoOption::info);
    EXPECT_EQ(message.displayOptions(), ControllerInfoOption::info);
    EXPECT_EQ(message.moduleType(), ModuleType::bridgeController);
    EXPECT_EQ(message.fwVersion(), "7.19");
    EXPECT_EQ(message.sucNodeId(), 0xFE);
    EXPECT_EQ(message.controllerCapabilities(), capabilities);
    EXPECT_EQ(message.controllerRole(), ControllerRole::sis);
    EXPECT_EQ(toText(message.serialCapabilities()), toText(serialCapabilities()));
    EXPECT_EQ(toText(message.deviceInfo()), toText(deviceInfo())); // no manufacturer is imposed
    EXPECT_EQ(message.nodeCount(), 232U);
    EXPECT_EQ(message.remoteQueueSize(), 11U);
    EXPECT_EQ(message.jobsQueueSize(), 12U);
    EXPECT_EQ(message.workQueueSize(), 13U);
    EXPECT_EQ(message.deviceStatus(), DeviceStatus::ready);
    EXPECT_EQ(message.securityStatus(), SecurityStatus::s2AccessControl);
    EXPECT_EQ(message.uptime(), 93784.25);
    EXPECT_FALSE(message.agentData());
    EXPECT_EQ(static_cast<int>(message.result()), 0);
    EXPECT_EQ(message.role(), MessageRole::none);
}

TEST(ControllerInfoMsg, ReportHasRoleThreeAndResultOne) {
    auto const message = report(ControllerInfoOption::commands);
    EXPECT_EQ(static_cast<int>(message->role()), 3);
    EXPECT_EQ(static_cast<int>(message->result()), 1);
    EXPECT_EQ(ownMembers<Confirmable>(*message), ownMembers<Confirmable>(info(ControllerInfoOption::commands)));
    EXPECT_TRUE(message->correlation().is_nil());
}

TEST(ControllerInfoMsg, AnswerIsAReportThatIsOnlyLinkedToItsRequest) {
    auto const request = ControllerInfoMsg::create(ControllerInfoOption::all);
    request->role(MessageRole::request);
    request->result(ZResult::failure);
    auto const message = answer(request);
    EXPECT_EQ(message->correlation(), request->id());
    EXPECT_EQ(static_cast<int>(message->role()), 3);
    EXPECT_EQ(static_cast<int>(message->result()), 1);
    EXPECT_EQ(ownMembers<Confirmable>(*message), ownMembers<Confirmable>(info(ControllerInfoOption::info)));
}

#ifndef NDEBUG
TEST(ControllerInfoMsgDeathTest, ResponseToANullRequestEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(answer(nullptr), testing::KilledBySignal(SIGABRT), "");
}
#endif

TEST(ControllerInfoMsg, SharesItsAgentWithItsClone) {
    auto message = info(ControllerInfoOption::all);
    auto const agent = AgentData::create(1, "u", "r", "d", "v");
    message.agentData(agent);
    auto const clone = boost::dynamic_pointer_cast<ControllerInfoMsg>(message.clone());
    ASSERT_TRUE(clone);
    EXPECT_EQ(clone->agentData(), agent);
}

// ---- on the wire

TEST(ControllerInfoMsg, ReadsEveryMemberOfItsGoldenText) {
    auto const message = readBack<ControllerInfoMsg>(golden("ControllerInfoMsg"));
    EXPECT_EQ(message->displayOptions(), ControllerInfoOption::all);
    EXPECT_EQ(message->moduleType(), ModuleType::bridgeController);
    EXPECT_EQ(message->fwVersion(), "7.19.2");
    EXPECT_EQ(message->sucNodeId(), 1);
    EXPECT_EQ(message->controllerCapabilities(), capabilities);
    EXPECT_EQ(message->controllerRole(), ControllerRole::sis);
    auto const& serial = message->serialCapabilities();
    EXPECT_EQ(serial.apiVersion(), 9);
    EXPECT_EQ(serial.apiRevision(), 10);
    EXPECT_EQ(serial.manufacturerId(), ManufacturerId::zorv);
    EXPECT_EQ(serial.productType(), 11);
    EXPECT_EQ(serial.productId(), 4096);
    EXPECT_EQ(serial.commands(),
              (std::vector<ZwApiCommand::Enum>{ZwApiCommand::sendData, ZwApiCommand::addNodeToNetwork,
                                               static_cast<ZwApiCommand::Enum>(0xFE)}));
    EXPECT_EQ(message->deviceInfo().manufacturer().searchType(), "0123:1234:0102");
    EXPECT_EQ(message->nodeCount(), 232U);
    EXPECT_EQ(message->remoteQueueSize(), 12U);
    EXPECT_EQ(message->jobsQueueSize(), 13U);
    EXPECT_EQ(message->workQueueSize(), 4294967295U);
    EXPECT_EQ(message->deviceStatus(), DeviceStatus::fault);
    EXPECT_EQ(message->securityStatus(), SecurityStatus::s2AccessControl);
    EXPECT_EQ(message->uptime(), 93784.25);
}

TEST(ControllerInfoMsg, HasThePlatformsManufacturerWhereTheTextHasNoDeviceInfo) {
    EXPECT_EQ(readBlank<ControllerInfoMsg>()->deviceInfo().manufacturer().manufacturerId(), ManufacturerId::zorv);
}

TEST(ControllerInfoMsg, NamesTheEnumerationOfAnUnknownText) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::ControllerInfoMsg","moduleType_":"bridge"})"),
              "InvalidEnumError: moduleType_: invalid ModuleType text \"bridge\"");
    EXPECT_EQ(errorOfReading(
                  R"({"__name__":"zorv::ControllerInfoMsg","serialCapabilities_":{"commands_":["sendData","x"]}})"),
              "InvalidEnumError: serialCapabilities_.commands_[1]: invalid ZwApiCommand text \"x\"");
}

TEST(ControllerInfoMsg, NamesThePathToANumberOutOfRange) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::ControllerInfoMsg","sucNodeId_":256})"),
              "SerializerError: sucNodeId_: expected unsigned byte, got 256");
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::ControllerInfoMsg","serialCapabilities_":{"productId_":-1}})"),
              "SerializerError: serialCapabilities_.productId_: expected unsigned short, got -1");
}

TEST(ControllerInfoMsg, DoesNotSendItsAgent) {
    auto message = info(ControllerInfoOption::capabilities);
    message.agentData(AgentData::create(1, "u", "r", "d", "v"));
    auto const rebuilt = readBack<ControllerInfoMsg>(toText(message));
    EXPECT_FALSE(rebuilt->agentData());
    EXPECT_EQ(shown(*rebuilt).back()[0], "Up time:");
}

// ---- as a table

TEST(ControllerInfoMsg, ShowsTheCapabilityRecordAndTheControllerForCapabilities) {
    EXPECT_EQ(shown(info(ControllerInfoOption::capabilities)), concatenated({capabilityRows, controllerRows}));
}

TEST(ControllerInfoMsg, ShowsOnlyTheDeviceForInfo) { EXPECT_EQ(shown(info(ControllerInfoOption::info)), deviceRows); }

TEST(ControllerInfoMsg, ShowsOnlyTheSupportedCommandsForCommands) {
    EXPECT_EQ(shown(info(ControllerInfoOption::commands)), commandRows);
}

TEST(ControllerInfoMsg, ShowsDeviceControllerAndCommandsForAll) {
    EXPECT_EQ(shown(info(ControllerInfoOption::all)), concatenated({deviceRows, controllerRows, commandRows}));
}

TEST(ControllerInfoMsg, ShowsOneRowForAnEmptyListOfSupportedCommands) {
    EXPECT_EQ(shown(*ControllerInfoMsg::create(ControllerInfoOption::commands)),
              (StringVecVec{{"Supported Commands:"}}));
}

TEST(ControllerInfoMsg, ShowsItsAgentAfterTheUptime) {
    auto message = info(ControllerInfoOption::capabilities);
    message.agentData(AgentData::create(4294967295U, "uuid-1", "Hall", "Lamp", "zw-lamp"));
    EXPECT_EQ(shown(message), concatenated({capabilityRows, controllerRows,
                                            StringVecVec{{"Device id:", "4294967295"},
                                                         {"Uuid:", "uuid-1"},
                                                         {"Room:", "Hall"},
                                                         {"Device:", "Lamp"},
                                                         {"Driver:", "zw-lamp"}}}));
}

TEST(ControllerInfoMsg, ShowsItsAgentBetweenTheControllerAndTheCommands) {
    auto message = info(ControllerInfoOption::all);
    message.agentData(AgentData::create(1, "u", "r", "d", "v"));
    auto const rows = shown(message);
    ASSERT_EQ(rows.size(), deviceRows.size() + controllerRows.size() + 5 + commandRows.size());
    EXPECT_EQ(rows[deviceRows.size() + controllerRows.size()], (Row{"Device id:", "1"}));
    auto commands = info(ControllerInfoOption::commands);
    commands.agentData(message.agentData());
    EXPECT_EQ(shown(commands), commandRows);
}

TEST(ControllerInfoMsg, ShowsAnUptimeThatIsNotANumberAsZero) {
    EXPECT_EQ(shownUptime(std::numeric_limits<double>::quiet_NaN()), "0d 0h 0m 0s\n");
}

TEST(ControllerInfoMsg, ShowsTheSameUptimeInEveryLocale) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
    };
    auto const before = std::locale::global(std::locale(std::locale::classic(), new Comma));
    auto const text = shownUptime(93784.25);
    std::locale::global(before);
    EXPECT_EQ(text, "1d 2h 3m 4.25s\n");
}

TEST(ControllerInfoMsg, ShowsAnUptimeOfDays) { EXPECT_EQ(shownUptime(93784.25), "1d 2h 3m 4.25s\n"); }

TEST(ControllerInfoMsg, ShowsAnUptimeOfLessThanAMinute) { EXPECT_EQ(shownUptime(59.999), "0d 0h 0m 59.999s\n"); }

TEST(ControllerInfoMsg, ShowsAnUptimeOfZero) { EXPECT_EQ(shownUptime(0), "0d 0h 0m 0s\n"); }

TEST(ControllerInfoMsg, ShowsAnUptimeOfExactlyOneDay) { EXPECT_EQ(shownUptime(86400), "1d 0h 0m 0s\n"); }

TEST(ControllerInfoMsg, ShowsAnUptimeBeyondAnIntAsTheLargestInt) {
    EXPECT_EQ(shownUptime(1e300), "24855d 3h 14m 7s\n");
}

} // namespace
} // namespace zorv
