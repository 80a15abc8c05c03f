// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/NodeInformationMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"
#include "tests/support/golden.h"
#include "tests/support/json.h"
#include "tests/support/wire.h"

#include "platform/libtransport/throwInvalidEnum.h"
#include "zwave/libquillet/PingMsg.h"

#include <boost/make_shared.hpp>

namespace zorv {
namespace {

using Row = std::vector<std::string>;

constexpr HomeId homeId = 0xC0FFEE01; // 3237998081

boost::shared_ptr<Device> makeDevice(unsigned char nodeId, int capability = 0, int security = 0) {
    NodeProtocolInfo const protocolInfo(static_cast<Capability::Enum>(capability),
                                        static_cast<Security::Enum>(security), BasicDeviceType::routingSlave,
                                        GenericDeviceType::switchBinary, static_cast<SpecificDeviceType::Enum>(3));
    return boost::make_shared<Device>(ZwaveAddress(homeId, nodeId),
                                      DeviceInfo(Manufacturer(ManufacturerId::zorv, 1, 2), protocolInfo, true, false));
}

DeviceMap mapOf(std::vector<boost::shared_ptr<Device>> const& devices) {
    DeviceMap map;
    for (auto const& device : devices) { map.emplace(device->address(), device); }
    return map;
}

/// A lamp that always listens, a lock that is woken by beams and a sensor that sleeps.
DeviceMap network() {
    auto const lamp = makeDevice(10, 0xC0 | 0x13);
    lamp->deviceNetworkStatus(DeviceNetworkStatus::online);
    lamp->deviceStatus(DeviceStatus::ready);
    lamp->securityStatus(SecurityStatus::s2Authenticated);
    lamp->commandClass(CommandClassType::version, {3, CommandClassAttribs::supported});
    lamp->commandClass(
        CommandClassType::switchBinary,
        {2, static_cast<CommandClassAttribs::Enum>(CommandClassAttribs::supported | CommandClassAttribs::secure)});
    lamp->commandClass(static_cast<CommandClassType::Enum>(0xF5), {10, CommandClassAttribs::controlled});
    auto const lock = makeDevice(2, 0x53, 0x41);
    lock->wakeStatus(WakeStatus::asleep);
    auto const sensor = makeDevice(232, 0x53);
    sensor->wakeStatus(WakeStatus::asleep);
    return mapOf({lamp, lock, sensor});
}

StringVecVec shown(NodeInformationMsg const& message, StringVecVec rows = {}) {
    message.accumulateDisplay(rows);
    return rows;
}

StringVecVec shown(DisplayOption::Enum option, DeviceMap const& devices = network()) {
    return shown(NodeInformationMsg(GetNodesOp::set, option, devices));
}

std::vector<DisplayOption::Enum> const allOptions{DisplayOption::none,       DisplayOption::all,
                                                  DisplayOption::info,       DisplayOption::status,
                                                  DisplayOption::cmdClasses, DisplayOption::cmdClassDetail};

// ---- enumerations

TEST(GetNodesOp, HasItsFourTexts) {
    expectTexts<GetNodesOp::Enum>({"undefined", "get", "set", "update"});
    EXPECT_EQ(errorOf([] { toString(static_cast<GetNodesOp::Enum>(4)); }),
              "InvalidEnumError: invalid GetNodesOp value 4");
    EXPECT_EQ(errorOf([] { GetNodesOp::toEnum("invalid"); }), "InvalidEnumError: invalid GetNodesOp text \"invalid\"");
}

TEST(DisplayOption, HasItsSixTexts) {
    expectTexts<DisplayOption::Enum>({"none", "all", "info", "status", "cmdClasses", "cmdClassDetail"});
    EXPECT_EQ(errorOf([] { toString(static_cast<DisplayOption::Enum>(6)); }),
              "InvalidEnumError: invalid DisplayOption value 6");
    EXPECT_EQ(errorOf([] { DisplayOption::toEnum("cmdclasses"); }),
              "InvalidEnumError: invalid DisplayOption text \"cmdclasses\"");
}

// ---- forms

TEST(NodeInformationMsg, HasTheDefaultsOfItsMembers) {
    NodeInformationMsg const message;
    EXPECT_EQ(static_cast<int>(message.operation()), 0);
    EXPECT_EQ(static_cast<int>(message.displayOptions()), 0);
    EXPECT_TRUE(message.devices().empty());
    EXPECT_TRUE(message.agentData().empty());
    EXPECT_EQ(static_cast<int>(message.result()), 0);
}

TEST(NodeInformationMsg, ARequestTakesItsThreeMembers) {
    auto const devices = network();
    auto const request = NodeInformationMsg::create(GetNodesOp::get, DisplayOption::status, devices);
    EXPECT_EQ(request->operation(), GetNodesOp::get);
    EXPECT_EQ(request->displayOptions(), DisplayOption::status);
    EXPECT_EQ(request->devices(), devices); // the same records, not copies
    EXPECT_EQ(request->result(), ZResult::none);
}

TEST(NodeInformationMsg, TheAnswerToAnyMessageHasOperationSetAndNoDisplayOption) {
    boost::shared_ptr<TMessage> const request = PingMsg::create(ZwaveAddress(homeId, 5));
    auto const devices = network();
    auto const response = NodeInformationMsg::create(request, devices);
    EXPECT_EQ(response->operation(), GetNodesOp::set);
    EXPECT_EQ(response->displayOptions(), DisplayOption::none);
    EXPECT_EQ(response->devices(), devices);
    EXPECT_EQ(static_cast<int>(response->result()), 1);
    EXPECT_EQ(response->correlation(), request->id());
}

TEST(NodeInformationMsg, TheAnswerToAnyMessageDoesNotDependOnTheClassOfTheMessage) {
    boost::shared_ptr<TMessage> const request =
        NodeInformationMsg::create(GetNodesOp::get, DisplayOption::cmdClasses, {});
    auto const response = NodeInformationMsg::create(request, DeviceMap());
    EXPECT_EQ(response->operation(), GetNodesOp::set);
    EXPECT_EQ(response->displayOptions(), DisplayOption::none);
}

TEST(NodeInformationMsg, TheAnswerToItsOwnClassKeepsTheDisplayOption) {
    auto const request = NodeInformationMsg::create(GetNodesOp::get, DisplayOption::cmdClasses, {});
    auto const devices = network();
    auto const response = NodeInformationMsg::create(request, GetNodesOp::update, devices);
    EXPECT_EQ(response->operation(), GetNodesOp::update);
    EXPECT_EQ(response->displayOptions(), DisplayOption::cmdClasses);
    EXPECT_EQ(response->devices(), devices);
    EXPECT_EQ(static_cast<int>(response->result()), 1);
    EXPECT_EQ(response->correlation(), request->id());
}

TEST(NodeInformationMsg, RefusesToRespondToANullRequest) {
    EXPECT_EQ(errorOf([] { NodeInformationMsg::create(boost::shared_ptr<TMessage>(), DeviceMap()); }),
              "NullPointerError: msg is null");
    EXPECT_EQ(errorOf([] {
                  NodeInformationMsg::create(boost::shared_ptr<NodeInformationMsg>(), GetNodesOp::set, DeviceMap());
              }),
              "NullPointerError: msg is null");
}

TEST(NodeInformationMsg, AnUpdateHoldsOneDeviceAndAnswersNothing) {
    auto const device = makeDevice(5);
    auto const update = NodeInformationMsg::create(device);
    EXPECT_EQ(update->operation(), GetNodesOp::update);
    EXPECT_EQ(update->displayOptions(), DisplayOption::none);
    EXPECT_EQ(update->devices(), mapOf({device}));
    EXPECT_EQ(static_cast<int>(update->result()), 1);
    EXPECT_TRUE(update->correlation().is_nil());
}

TEST(NodeInformationMsg, RefusesAnUpdateWithoutADevice) {
    EXPECT_EQ(errorOf([] { NodeInformationMsg::create(boost::shared_ptr<Device>()); }),
              "NullPointerError: device is null");
}

// ---- copies

TEST(NodeInformationMsg, ACopySharesTheDevicesButHasNoAgents) {
    NodeInformationMsg message(GetNodesOp::set, DisplayOption::all, network());
    message.agentData({{ZwaveAddress(homeId, 2), AgentData::create(7, "u", "r", "d", "v")}});
    NodeInformationMsg const copy(message);
    EXPECT_EQ(copy.operation(), GetNodesOp::set);
    EXPECT_EQ(copy.displayOptions(), DisplayOption::all);
    EXPECT_EQ(copy.devices(), message.devices());
    EXPECT_EQ(copy.id(), message.id());
    EXPECT_TRUE(copy.agentData().empty());
    EXPECT_EQ(message.agentData().size(), 1U);
}

TEST(NodeInformationMsg, AssigningSharesTheDevicesAndLeavesNoAgents) {
    NodeInformationMsg message(GetNodesOp::set, DisplayOption::all, network());
    message.result(ZResult::failure);
    message.agentData({{ZwaveAddress(homeId, 2), AgentData::create(7, "u", "r", "d", "v")}});
    NodeInformationMsg other;
    other.agentData({{ZwaveAddress(homeId, 3), AgentData::create(8, "u", "r", "d", "v")}});
    other = message;
    EXPECT_EQ(other.operation(), GetNodesOp::set);
    EXPECT_EQ(other.displayOptions(), DisplayOption::all);
    EXPECT_EQ(other.devices(), message.devices());
    EXPECT_EQ(other.id(), message.id());
    EXPECT_EQ(other.result(), ZResult::failure);
    EXPECT_TRUE(other.agentData().empty());
    EXPECT_EQ(message.agentData().size(), 1U);
}

TEST(NodeInformationMsg, AssigningToItselfKeepsTheAgents) {
    NodeInformationMsg message(GetNodesOp::set, DisplayOption::all, network());
    message.agentData({{ZwaveAddress(homeId, 2), AgentData::create(7, "u", "r", "d", "v")}});
    auto const& same = message;
    message = same;
    EXPECT_EQ(message.agentData().size(), 1U);
    EXPECT_EQ(message.devices().size(), network().size());
}

TEST(NodeInformationMsg, ACloneAndAResponseHaveNoAgents) {
    NodeInformationMsg message(GetNodesOp::set, DisplayOption::all, network());
    message.agentData({{ZwaveAddress(homeId, 2), AgentData::create(7, "u", "r", "d", "v")}});
    auto const clone = boost::dynamic_pointer_cast<NodeInformationMsg>(message.clone());
    ASSERT_TRUE(clone);
    EXPECT_TRUE(clone->agentData().empty());
    EXPECT_EQ(clone->devices(), message.devices());
    auto const response = boost::dynamic_pointer_cast<NodeInformationMsg>(message.makeResponse(ZResult::success));
    ASSERT_TRUE(response);
    EXPECT_TRUE(response->agentData().empty());
}

// ---- on the wire

TEST(NodeInformationMsg, WritesAnEmptyMapAsAnEmptyArrayAndNoAgents) {
    NodeInformationMsg message;
    message.agentData({{ZwaveAddress(homeId, 2), AgentData::create(7, "u", "r", "d", "v")}});
    EXPECT_EQ(ownMembers<Confirmable>(message), R"(,"operation_":"undefined","displayOptions_":"none","devices_":[]})");
}

TEST(NodeInformationMsg, WritesAnEntryWithoutADeviceAsNullAndReadsItBack) {
    NodeInformationMsg const message(GetNodesOp::set, DisplayOption::none, {{ZwaveAddress(homeId, 5), nullptr}});
    EXPECT_EQ(ownMembers<Confirmable>(message), R"(,"operation_":"set","displayOptions_":"none",)"
                                                R"("devices_":[[{"homeId_":3237998081,"nodeId_":5},null]]})");
    auto const rebuilt = readBack<NodeInformationMsg>(toText(message));
    ASSERT_TRUE(rebuilt);
    EXPECT_EQ(rebuilt->devices(), message.devices());
}

TEST(NodeInformationMsg, ReadsEveryMemberOfItsGoldenText) {
    auto const message = readBack<NodeInformationMsg>(golden("NodeInformationMsg"));
    ASSERT_TRUE(message);
    EXPECT_EQ(message->operation(), GetNodesOp::update);
    EXPECT_EQ(message->displayOptions(), DisplayOption::cmdClassDetail);
    ASSERT_EQ(message->devices().size(), 1U);
    auto const& device = message->devices().at(ZwaveAddress(homeId, 5));
    ASSERT_TRUE(device);
    EXPECT_EQ(device->configErrors(), 3);
}

TEST(NodeInformationMsg, WritesItsDevicesInTheOrderOfItsMap) {
    NodeInformationMsg const message(GetNodesOp::set, DisplayOption::none, network());
    auto const written = toJson(message)["devices_"];
    ASSERT_EQ(written.size(), 3U);
    Json::ArrayIndex index = 0;
    for (auto const& entry : message.devices()) {
        EXPECT_EQ(written[index][0]["nodeId_"].asUInt(), entry.first.nodeId());
        EXPECT_EQ(written[index][1], toJson(*entry.second));
        ++index;
    }
}

TEST(NodeInformationMsg, ReproducesEveryDeviceOfANetwork) {
    NodeInformationMsg const message(GetNodesOp::set, DisplayOption::none, network());
    auto const rebuilt = readBack<NodeInformationMsg>(toText(message));
    ASSERT_TRUE(rebuilt);
    ASSERT_EQ(rebuilt->devices().size(), 3U);
    for (auto const& entry : message.devices()) {
        EXPECT_EQ(toText(*rebuilt->devices().at(entry.first)), toText(*entry.second));
    }
}

TEST(NodeInformationMsg, KeepsTheFirstDeviceOfTwoWithTheSameAddress) {
    auto const message =
        readBack<NodeInformationMsg>(R"({"__name__":"zorv::NodeInformationMsg","devices_":[)"
                                     R"([{"homeId_":1,"nodeId_":5},{"__name__":"zorv::Device","configErrors_":1}],)"
                                     R"([{"homeId_":1,"nodeId_":5},{"__name__":"zorv::Device","configErrors_":2}]]})");
    ASSERT_TRUE(message);
    ASSERT_EQ(message->devices().size(), 1U);
    EXPECT_EQ(message->devices().at(ZwaveAddress(1, 5))->configErrors(), 1);
}

TEST(NodeInformationMsg, KeepsTheDevicesThatItHasWhenItIsReadInto) {
    auto const device = makeDevice(5);
    NodeInformationMsg message(GetNodesOp::set, DisplayOption::none, mapOf({device}));
    Serializer s(R"({"devices_":[[{"homeId_":3237998081,"nodeId_":5},null],[{"homeId_":1,"nodeId_":6},null]]})");
    NodeInformationMsg::serialFactory(s, &message);
    ASSERT_EQ(message.devices().size(), 2U);
    EXPECT_EQ(message.devices().at(device->address()), device);
    EXPECT_FALSE(message.devices().at(ZwaveAddress(1, 6)));
}

TEST(NodeInformationMsg, RefusesDevicesThatAreNoArray) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::NodeInformationMsg","devices_":{}})"),
              "SyntaxError: expected array, got object");
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::NodeInformationMsg","devices_":null})"),
              "SyntaxError: expected array, got null");
}

TEST(NodeInformationMsg, RefusesAnEntryThatIsNoArray) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::NodeInformationMsg","devices_":[5]})"),
              "SyntaxError: expected array, got int");
}

TEST(NodeInformationMsg, RefusesWordsThatItDoesNotKnow) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::NodeInformationMsg","operation_":"fetch"})"),
              "InvalidEnumError: operation_: invalid GetNodesOp text \"fetch\"");
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::NodeInformationMsg","displayOptions_":"some"})"),
              "InvalidEnumError: displayOptions_: invalid DisplayOption text \"some\"");
}

// ---- as a table

TEST(NodeInformationMsg, ShowsNothingAtAllWithoutDevicesInEveryView) {
    for (auto const option : allOptions) { EXPECT_TRUE(shown(option, {}).empty()) << toString(option); }
}

TEST(NodeInformationMsg, ShowsTheOverviewSortedByAddress) {
    EXPECT_EQ(shown(DisplayOption::none),
              (StringVecVec{{"NodeId", "Search Type", "Status", "Device", "Security", "Power"},
                            {"2", "023f:0001:0002", "unknown", "unknown", "unknown", "flirs"},
                            {"10", "023f:0001:0002", "online", "ready", "s2Authenticated", "mains"},
                            {"232", "023f:0001:0002", "unknown", "unknown", "unknown", "asleep"}}));
}

TEST(NodeInformationMsg, ShowsTheOverviewForANumberThatIsNoOption) {
    EXPECT_EQ(shown(static_cast<DisplayOption::Enum>(6)), shown(DisplayOption::none));
}

TEST(NodeInformationMsg, ShowsWhatNodesAre) {
    EXPECT_EQ(shown(DisplayOption::info),
              (StringVecVec{
                  {"NodeId", "Basic", "Generic", "Specific", "Capability", "Security"},
                  {"2", "routingSlave", "switchBinary", "0x03", "baud40000|routing|version3", "security|sensor1000ms"},
                  {"10", "routingSlave", "switchBinary", "0x03", "baud40000|routing|listening|version3", "none"},
                  {"232", "routingSlave", "switchBinary", "0x03", "baud40000|routing|version3", "none"}}));
}

TEST(NodeInformationMsg, ShowsTheFlagsOfNodesAsDigits) {
    EXPECT_EQ(shown(DisplayOption::status), (StringVecVec{{"NodeId", "Basic", "HomeId", "Slave", "Virtual", "Repeater"},
                                                          {"2", "routingSlave", "3237998081", "1", "0", "0"},
                                                          {"10", "routingSlave", "3237998081", "1", "0", "1"},
                                                          {"232", "routingSlave", "3237998081", "1", "0", "0"}}));
}

TEST(NodeInformationMsg, ListsCommandClassesWithTheirVersionsInOneCell) {
    EXPECT_EQ(shown(DisplayOption::cmdClasses),
              (StringVecVec{
                  {"Node", "Command Classes"}, {"2", ""}, {"10", "switchBinaryV2 versionV3 0xf5V10"}, {"232", ""}}));
}

TEST(NodeInformationMsg, ShowsTheDetailOfCommandClassesWithoutTitles) {
    EXPECT_EQ(shown(DisplayOption::cmdClassDetail), (StringVecVec{{"Node information:", "cmdClassDetail"},
                                                                  {"Address:", "c0ffee01:2"},
                                                                  {"Node information:", "cmdClassDetail"},
                                                                  {"Address:", "c0ffee01:10"},
                                                                  {"switchBinary V2:", "supported|secure"},
                                                                  {"version V3:", "supported"},
                                                                  {"0xf5 V10:", "controlled"},
                                                                  {"Node information:", "cmdClassDetail"},
                                                                  {"Address:", "c0ffee01:232"}}));
}

TEST(NodeInformationMsg, ShowsAllOfANodeAfterASeparatorAndATitle) {
    EXPECT_EQ(shown(DisplayOption::all, mapOf({makeDevice(5)})), (StringVecVec{{""},
                                                                               {"Node Information: "},
                                                                               {"Address:", "c0ffee01:5"},
                                                                               {"Manufacturer id:", "zorv"},
                                                                               {"Product type:", "0001"},
                                                                               {"Product id:", "0002"},
                                                                               {"Capability:", "none|version0"},
                                                                               {"Security:", "none"},
                                                                               {"Basic device type:", "routingSlave"},
                                                                               {"Generic device type:", "switchBinary"},
                                                                               {"Specific device type:", "0x03"},
                                                                               {"Slave:", "1"},
                                                                               {"Virtual:", "0"},
                                                                               {"Repeater:", "0"},
                                                                               {"Device network status:", "unknown"},
                                                                               {"Device status:", "unknown"},
                                                                               {"Device lights:", "unknown"},
                                                                               {"Security status:", "unknown"},
                                                                               {"Wake status:", "unknown"},
                                                                               {"Command classes:", "0"},
                                                                               {"Configuration errors:", "0"}}));
}

TEST(NodeInformationMsg, ShowsTheAgentOfANodeAfterIt) {
    NodeInformationMsg message(GetNodesOp::set, DisplayOption::all, mapOf({makeDevice(5), makeDevice(6)}));
    message.agentData({{ZwaveAddress(homeId, 6), AgentData::create(255, "uuid-6", "Hall", "Lamp", "zw-lamp")}});
    auto const rows = shown(message);
    ASSERT_EQ(rows.size(), 2U * 21U + 5U);
    EXPECT_EQ(rows[21], Row{""}); // node 5 has no agent
    EXPECT_EQ((StringVecVec{rows.end() - 5, rows.end()}), (StringVecVec{{"Device id:", "255"},
                                                                        {"Uuid:", "uuid-6"},
                                                                        {"Room:", "Hall"},
                                                                        {"Device:", "Lamp"},
                                                                        {"Driver:", "zw-lamp"}}));
}

TEST(NodeInformationMsg, LeavesOutAnAgentThatIsEmpty) {
    NodeInformationMsg message(GetNodesOp::set, DisplayOption::all, mapOf({makeDevice(5)}));
    message.agentData({{ZwaveAddress(homeId, 5), nullptr}});
    EXPECT_EQ(shown(message).size(), 21U);
}

TEST(NodeInformationMsg, ShowsAgentsOnlyWithAll) {
    for (auto const option : {DisplayOption::none, DisplayOption::info, DisplayOption::status,
                              DisplayOption::cmdClasses, DisplayOption::cmdClassDetail}) {
        NodeInformationMsg message(GetNodesOp::set, option, mapOf({makeDevice(5)}));
        message.agentData({{ZwaveAddress(homeId, 5), AgentData::create(1, "u", "r", "d", "v")}});
        EXPECT_EQ(shown(message).size(), 2U) << option;
    }
}

TEST(NodeInformationMsg, ShowsDevicesSortedByAddressInEveryOrderOfInsertion) {
    DeviceMap ascending;
    DeviceMap descending;
    for (unsigned char nodeId = 1; nodeId <= 232; ++nodeId) {
        ascending.emplace(ZwaveAddress(homeId, nodeId), makeDevice(nodeId));
        auto const last = static_cast<unsigned char>(233 - nodeId);
        descending.emplace(ZwaveAddress(homeId, last), makeDevice(last));
    }
    auto const rows = shown(DisplayOption::status, ascending);
    EXPECT_EQ(shown(DisplayOption::status, descending), rows);
    ASSERT_EQ(rows.size(), 233U);
    for (std::size_t i = 1; i < rows.size(); ++i) { EXPECT_EQ(rows[i][0], std::to_string(i)); }
}

TEST(NodeInformationMsg, SortsByHomeIdBeforeNodeId) {
    auto const far = boost::make_shared<Device>(ZwaveAddress(2, 1), DeviceInfo());
    auto const near = boost::make_shared<Device>(ZwaveAddress(1, 9), DeviceInfo());
    auto const rows = shown(DisplayOption::status, mapOf({far, near}));
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[1][0], "9");
    EXPECT_EQ(rows[2][0], "1");
}

TEST(NodeInformationMsg, WritesNoTitlesIntoATableThatHoldsRows) {
    for (auto const option : allOptions) {
        NodeInformationMsg const message(GetNodesOp::set, option, mapOf({makeDevice(5)}));
        auto const rows = shown(message, {{"before"}});
        ASSERT_GE(rows.size(), 2U) << toString(option);
        EXPECT_EQ(rows[0], Row{"before"});
        EXPECT_NE(rows[1][0], "NodeId") << toString(option);
        EXPECT_NE(rows[1][0], "Node") << toString(option);
    }
}

TEST(NodeInformationMsg, ShowsTheNodeIdOfTheDeviceNotOfTheKey) {
    DeviceMap devices;
    devices.emplace(ZwaveAddress(homeId, 7), makeDevice(8));
    EXPECT_EQ(shown(DisplayOption::status, devices).back()[0], "8");
    EXPECT_EQ(shown(DisplayOption::cmdClassDetail, devices)[1], (Row{"Address:", "c0ffee01:7"}));
}

} // namespace
} // namespace zorv
