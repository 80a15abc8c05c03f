// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/MessageClient.h"
#include "tests/scenario/StreamDaemon.h"
#include "tests/support/TemporaryDirectory.h"

#include "platform/libzorvshared/Device.h"
#include "platform/libzorvshared/RawCommand.h"
#include "zwave/libquillet/CommandClassMsg.h"
#include "zwave/libquillet/ConfigurationMsg.h"
#include "zwave/libquillet/DeviceStatusMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/SendCommandMsg.h"

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using testing::ElementsAre;

constexpr HomeId home = 0xC0FFEE01;
constexpr unsigned char sendData = 0x13;
constexpr unsigned char sendDataBridge = 0xA9;
constexpr unsigned char sendDataMultiBridge = 0xAB;

/// Node 2 and 3 work, 8 sleeps, 9 is dead; of series 700, whose module is a bridge.
char const* const network = R"({"homeId": "c0ffee01", "retransmitMs": 20, "nodes": [
    {"id": 2, "latencyMs": 5}, {"id": 3, "latencyMs": 1}, {"id": 8, "state": "sleeping", "wakeUpSeconds": 2},
    {"id": 9, "state": "dead"}]})";

class NodeMessages : public testing::TestWithParam<Stream> {
protected:
    TemporaryDirectory directory_;
    StreamDaemon daemon_{GetParam(), {"--network", directory_.write("network.json", network)}};
    MessageClient client_{daemon_.port()};
};

INSTANTIATE_TEST_SUITE_P(OverEach, NodeMessages, streams(), nameOf);

boost::shared_ptr<PingMsg> ping(unsigned char node) { return PingMsg::create(ZwaveAddress(home, node)); }

boost::shared_ptr<SendCommandMsg> command(std::vector<unsigned char> const& nodes, bool noWait = false,
                                          bool forceSend = false, bool forceSecure = false) {
    std::vector<ZwaveAddress> destinations;
    for (auto const node : nodes) { destinations.emplace_back(home, node); }
    return SendCommandMsg::create(destinations, boost::make_shared<RawCommand>(std::vector<unsigned char>{0x20, 0x02}),
                                  TransmitOption::defaultOptions, noWait, forceSend, forceSecure);
}

bool isBasicGet(std::vector<unsigned char> const& parameters) {
    std::vector<unsigned char> const bytes{2, 0x20, 0x02};
    return std::search(parameters.begin(), parameters.end(), bytes.begin(), bytes.end()) != parameters.end();
}

/// Waits until the frame of command() has gone to the module by a function; its parameters.
std::vector<unsigned char> waitForFrame(MessageClient& client, unsigned char function) {
    while (true) {
        auto parameters = client.waitForCall(function);
        if (isBasicGet(parameters)) { return parameters; }
    }
}

TEST_P(NodeMessages, PingTellsWhatBecameOfItsFrame) {
    client_.subscribe({ControlCommandMsg::NAME});
    auto const answer = client_.ask(ping(2));
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_GE(answer->latencyMs(), 5U);
    EXPECT_EQ(client_.ask(ping(9))->result(), ZResult::nodeNotReached);
    EXPECT_EQ(client_.ask(ping(77))->result(), ZResult::nodeNotFound);
    EXPECT_EQ(client_.ask(PingMsg::create(ZwaveAddress(0xDEADBEEF, 2)))->result(), ZResult::nodeNotFound);
    EXPECT_EQ(client_.ask(PingMsg::create(ZwaveAddress(0, 2)))->result(), ZResult::success);
    auto const own = client_.ask(ping(1));
    EXPECT_EQ(own->result(), ZResult::success);
    EXPECT_EQ(own->latencyMs(), 0U);
}

TEST_P(NodeMessages, PingOfAClientThatEndsItsOutputIsAnswered) {
    auto const request = ping(2);
    client_.tell(*request);
    client_.endOutput();
    EXPECT_EQ(client_.answerTo(request)->result(), ZResult::success);
}

TEST_P(NodeMessages, PingOfASleepingNodeIsNotSent) { EXPECT_EQ(client_.ask(ping(8))->result(), ZResult::nodeAsleep); }

TEST_P(NodeMessages, CommandGoesToItsNode) {
    client_.subscribe({ControlCommandMsg::NAME});
    auto const request = command({2});
    client_.tell(*request);
    auto const parameters = waitForFrame(client_, sendDataBridge);
    EXPECT_EQ(parameters.at(0), 1); // from the module itself
    EXPECT_EQ(parameters.at(1), 2);
    EXPECT_EQ(parameters.at(5), 0x25);
    EXPECT_EQ(client_.answerTo(request)->result(), ZResult::success);
}

TEST_P(NodeMessages, ReportThatACommandAsksForComesAsAnEvent) {
    client_.subscribe({CommandClassMsg::NAME});
    client_.ask(command({2}));
    auto const report = client_.waitFor<CommandClassMsg>([](CommandClassMsg const& message) {
        auto const bytes = message.command()->bytes();
        return bytes.size() >= 2 && bytes[0] == 0x20 && bytes[1] == 0x03;
    });
    EXPECT_EQ(report->sourceAddr(), ZwaveAddress(home, 2));
    EXPECT_EQ(report->role(), MessageRole::report);
}

TEST_P(NodeMessages, CommandToSeveralNodesIsOneFrame) {
    client_.subscribe({ControlCommandMsg::NAME});
    for (auto const& nodes : {std::vector<unsigned char>{2, 3}, {255, 2, 3}}) {
        auto const request = command(nodes);
        client_.tell(*request);
        EXPECT_THAT(waitForFrame(client_, sendDataMultiBridge), testing::Contains(2));
        auto const answer = client_.answerTo(request);
        EXPECT_EQ(answer->result(), ZResult::success);
        EXPECT_TRUE(answer->groupResponse());
    }
}

TEST_P(NodeMessages, CommandToAllIsABroadcast) {
    client_.subscribe({ControlCommandMsg::NAME});
    auto const request = command({255});
    client_.tell(*request);
    EXPECT_EQ(waitForFrame(client_, sendDataBridge).at(1), 255);
    EXPECT_EQ(client_.answerTo(request)->result(), ZResult::success);
}

TEST_P(NodeMessages, CommandThatDoesNotWaitIsAnsweredWhenTheModuleHasTakenIt) {
    auto const answer = client_.ask(command({9}, true)); // which nobody acknowledges
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(client_.ask(command({9}))->result(), ZResult::nodeNotReached);
}

TEST_P(NodeMessages, CommandToASleepingNodeWaitsForItsWakeUp) {
    auto const request = command({8});
    client_.tell(*request);
    EXPECT_EQ(client_.ask(ping(2))->result(), ZResult::success); // others do not wait for it
    EXPECT_EQ(client_.answerTo(request)->result(), ZResult::success);
}

TEST_P(NodeMessages, ForcedCommandGoesToASleepingNodeAtOnce) {
    EXPECT_EQ(client_.ask(command({8}, false, true))->result(), ZResult::nodeNotReached);
}

TEST_P(NodeMessages, CommandThatCannotBeSentIsToldWhy) {
    EXPECT_EQ(client_.ask(command({2}, false, false, true))->result(), ZResult::rejected); // not secure
    EXPECT_EQ(client_.ask(command({77}))->result(), ZResult::nodeNotFound);
    EXPECT_EQ(client_.ask(command({}))->result(), ZResult::rejected);
    EXPECT_EQ(client_.ask(command({2, 255}))->result(), ZResult::rejected);
    auto const empty = SendCommandMsg::create(ZwaveAddress(home, 2), nullptr, TransmitOption::ack, false, false, false);
    EXPECT_EQ(client_.ask(empty)->result(), ZResult::rejected);
    auto const tooLong =
        SendCommandMsg::create(ZwaveAddress(home, 2), boost::make_shared<RawCommand>(std::vector<unsigned char>(200)),
                               TransmitOption::ack, false, false, false);
    EXPECT_EQ(client_.ask(tooLong)->result(), ZResult::rejected);
}

TEST_P(NodeMessages, NodeTableHasEveryNodeAndKeepsTheDisplayOption) {
    auto const answer = client_.ask(NodeInformationMsg::create(GetNodesOp::get, DisplayOption::status, {}));
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(answer->displayOptions(), DisplayOption::status);
    ASSERT_EQ(answer->devices().size(), 5U);
    EXPECT_TRUE(answer->devices().at({home, 2})->isListening());
    EXPECT_TRUE(answer->devices().at({home, 8})->isSleeping());
}

TEST_P(NodeMessages, ClientSetsTheLightsOfANodeAndNothingElse) {
    client_.subscribe({DeviceStatusMsg::NAME});
    auto const given = boost::make_shared<Device>(ZwaveAddress(home, 2), DeviceInfo());
    given->deviceLights(DeviceLights::on);
    given->securityStatus(SecurityStatus::s2AccessControl);
    auto const answer =
        client_.ask(NodeInformationMsg::create(GetNodesOp::set, DisplayOption::none, {{given->address(), given}}));
    EXPECT_EQ(answer->result(), ZResult::success);
    auto const event = client_.waitFor<DeviceStatusMsg>(
        [](DeviceStatusMsg const& status) { return status.deviceLights() == DeviceLights::on; });
    EXPECT_EQ(event->address(), ZwaveAddress(home, 2));
    EXPECT_EQ(event->securityStatus(), SecurityStatus::insecure);
    auto const known = client_.ask(DeviceStatusMsg::create(ZwaveAddress(home, 2), MessageRole::request));
    EXPECT_EQ(known->deviceLights(), DeviceLights::on);
    auto const table = client_.ask(NodeInformationMsg::create(GetNodesOp::get, DisplayOption::none, {}));
    EXPECT_TRUE(table->devices().at({home, 2})->isListening()); // which the given record was not
}

TEST_P(NodeMessages, NodeInformationOfUnknownNodesOrWithoutAnOperationIsRejected) {
    auto const unknown = boost::make_shared<Device>(ZwaveAddress(home, 77), DeviceInfo());
    for (auto const& request :
         {NodeInformationMsg::create(GetNodesOp::set, DisplayOption::none, {{unknown->address(), unknown}}),
          NodeInformationMsg::create(GetNodesOp::set, DisplayOption::none, {}),
          NodeInformationMsg::create(GetNodesOp::undefined, DisplayOption::none, {}),
          NodeInformationMsg::create(GetNodesOp::update, DisplayOption::none, {})}) {
        EXPECT_EQ(client_.ask(request)->result(), ZResult::rejected);
    }
}

TEST_P(NodeMessages, DeviceStatusIsThatOfTheNode) {
    client_.ask(ping(9));
    auto const answer = client_.ask(DeviceStatusMsg::create(ZwaveAddress(home, 9), MessageRole::request));
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(answer->deviceNetworkStatus(), DeviceNetworkStatus::offline);
    auto const unknown = client_.ask(DeviceStatusMsg::create(ZwaveAddress(home, 77), MessageRole::request));
    EXPECT_EQ(unknown->result(), ZResult::nodeNotFound);
}

TEST_P(NodeMessages, InterviewIsToldStageByStageAndAnsweredAtItsEnd) {
    client_.subscribe({ConfigurationMsg::NAME});
    auto const device = boost::make_shared<Device>(ZwaveAddress(home, 2), DeviceInfo());
    auto const request = boost::make_shared<ConfigurationMsg>(ConfigurationStatus::start, device, ZResult::none);
    auto const answer = client_.ask(request);
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(answer->operation(), ConfigurationStatus::finish);
    ASSERT_TRUE(answer->device());
    EXPECT_FALSE(answer->device()->commandClasses().empty());
    auto const stageOf2 = [](ConfigurationStatus::Enum stage) {
        return [stage](ConfigurationMsg const& event) {
            return event.operation() == stage && event.device()->address() == ZwaveAddress(home, 2);
        };
    };
    client_.waitFor<ConfigurationMsg>(stageOf2(ConfigurationStatus::commandClasses));
    client_.waitFor<ConfigurationMsg>(stageOf2(ConfigurationStatus::mfg));
    client_.waitFor<ConfigurationMsg>(stageOf2(ConfigurationStatus::version));
    client_.waitFor<ConfigurationMsg>(stageOf2(ConfigurationStatus::finish));
}

TEST_P(NodeMessages, InterviewThatCannotBeginIsToldWhy) {
    auto const ask = [this](ConfigurationStatus::Enum operation, boost::shared_ptr<Device> const& device) {
        return client_.ask(boost::make_shared<ConfigurationMsg>(operation, device, ZResult::none))->result();
    };
    auto const node = [](unsigned char id) { return boost::make_shared<Device>(ZwaveAddress(home, id), DeviceInfo()); };
    EXPECT_EQ(ask(ConfigurationStatus::start, nullptr), ZResult::rejected);
    EXPECT_EQ(ask(ConfigurationStatus::finish, node(2)), ZResult::rejected);
    EXPECT_EQ(ask(ConfigurationStatus::start, node(77)), ZResult::nodeNotFound);
    EXPECT_EQ(ask(ConfigurationStatus::start, node(1)), ZResult::rejected); // the module's own
    EXPECT_EQ(ask(ConfigurationStatus::start, node(8)), ZResult::nodeAsleep);
}

TEST_P(NodeMessages, ModuleOfTheOlderGenerationIsSentToByItsOwnFunctions) {
    std::string text = network;
    text.insert(1, "\"module\": {\"generation\": \"500\"}, ");
    StreamDaemon const daemon(GetParam(), {"--network", directory_.write("older.json", text)});
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME});
    auto const request = command({2});
    client.tell(*request);
    EXPECT_EQ(waitForFrame(client, sendData).at(0), 2);
    EXPECT_EQ(client.answerTo(request)->result(), ZResult::success);
}

} // namespace
