// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/MessageClient.h"
#include "tests/scenario/StreamDaemon.h"
#include "tests/support/TemporaryDirectory.h"

#include "zwave/libquillet/AddRemoveNodeMsg.h"
#include "zwave/libquillet/LearnModeMsg.h"
#include "zwave/libquillet/ManageFailedNodeMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/RequestNeighborUpdateMsg.h"
#include "zwave/libquillet/RequestNetworkUpdateMsg.h"
#include "zwave/libquillet/ResetDefaultsMsg.h"
#include "zwave/libquillet/SendNifMsg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using testing::ElementsAre;

constexpr HomeId home = 0xC0FFEE01;

// Functions of the module.
constexpr unsigned char sendNodeInformation = 0x12;
constexpr unsigned char setDefault = 0x42;
constexpr unsigned char neighborUpdate = 0x48;
constexpr unsigned char addNode = 0x4A;
constexpr unsigned char removeNode = 0x4B;
constexpr unsigned char controllerChange = 0x4D;
constexpr unsigned char setLearnMode = 0x50;
constexpr unsigned char networkUpdate = 0x53;
constexpr unsigned char removeFailedNode = 0x61;
constexpr unsigned char isFailedNode = 0x62;
constexpr unsigned char replaceFailedNode = 0x63;

constexpr unsigned char modeMask = 0x0F;
constexpr unsigned char stopMode = 5;

/// A network in which nothing takes long: node 2 works, 9 is dead, and what is to come and go comes and goes at once.
std::string quickNetwork(std::string const& more) {
    return R"({"homeId": "c0ffee01", "retransmitMs": 20, "nodes": [{"id": 2, "latencyMs": 1},
        {"id": 3, "latencyMs": 1}, {"id": 9, "state": "dead"}])" +
           more + "}";
}

class NetworkMessages : public testing::TestWithParam<Stream> {
protected:
    std::vector<std::string> network(std::string const& more) {
        return {"--network", directory_.write("network.json", quickNetwork(more))};
    }

    static std::vector<unsigned int> nodes(MessageClient& client) {
        auto const answer = client.ask(NodeInformationMsg::create(GetNodesOp::get, DisplayOption::none, {}));
        std::vector<unsigned int> ids;
        for (auto const& [address, device] : answer->devices()) { ids.push_back(address.nodeId()); }
        std::sort(ids.begin(), ids.end());
        return ids;
    }

    TemporaryDirectory directory_;
};

boost::shared_ptr<AddRemoveNodeMsg> change(AddRemoveOp::Enum operation, int timeout = 20) {
    return AddRemoveNodeMsg::create(operation, false, ZResult::none, timeout, false);
}

boost::shared_ptr<AddRemoveNodeMsg> abortion(AddRemoveOp::Enum operation) {
    return AddRemoveNodeMsg::create(operation, true, ZResult::none, 0, false);
}

bool isStop(std::vector<unsigned char> const& parameters) { return (parameters.at(0) & modeMask) == stopMode; }

/// Waits until the module was told to stop a mode.
void waitForStop(MessageClient& client, unsigned char function) {
    while (!isStop(client.waitForCall(function))) {}
}

INSTANTIATE_TEST_SUITE_P(OverEach, NetworkMessages, streams(), nameOf);

/// Waits until a mode is over: the last stop has no callback.
void waitForLastStop(MessageClient& client, unsigned char function) {
    while (true) {
        auto const parameters = client.waitForCall(function);
        if (isStop(parameters) && parameters.at(1) == 0) { break; }
    }
    client.ask(boost::make_shared<SessionLayerMsg>(SessionLayerOp::ping)); // comes after it
}

TEST_P(NetworkMessages, InclusionTellsOfItsProgressAndAnswersWithTheDeviceThatCame) {
    StreamDaemon const daemon(GetParam(), network(R"(, "joining": [{"afterMs": 20}])"));
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME, NodeInformationMsg::NAME});
    auto const request = change(AddRemoveOp::add);
    client.tell(*request);
    EXPECT_EQ(client.waitForCall(addNode).at(0), 0xC1); // any node, normal power, network-wide
    EXPECT_EQ(client.progressOf(request)->operation(), AddRemoveOp::add);
    auto const answer = client.answerTo(request);
    EXPECT_EQ(answer->result(), ZResult::success);
    ASSERT_TRUE(answer->device());
    EXPECT_EQ(answer->device()->address(), ZwaveAddress(home, 4));
    EXPECT_THAT(nodes(client), ElementsAre(1, 2, 3, 4, 9));
    auto const event = client.waitFor<NodeInformationMsg>([](NodeInformationMsg const& m) {
        return m.devices().count({home, 4}) != 0;
    });
    EXPECT_EQ(event->operation(), GetNodesOp::update);
    waitForStop(client, addNode);
}

TEST_P(NetworkMessages, ExclusionAnswersWithTheDeviceThatWent) {
    StreamDaemon const daemon(GetParam(), network(R"(, "leaving": [{"node": 3, "afterMs": 20}])"));
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME, AddRemoveNodeMsg::NAME});
    auto const request = change(AddRemoveOp::remove);
    auto const answer = client.ask(request);
    EXPECT_EQ(answer->result(), ZResult::success);
    ASSERT_TRUE(answer->device());
    EXPECT_EQ(answer->device()->address(), ZwaveAddress(home, 3));
    EXPECT_THAT(nodes(client), ElementsAre(1, 2, 9));
    auto const event =
        client.waitFor<AddRemoveNodeMsg>([](AddRemoveNodeMsg const& m) { return m.correlation().is_nil(); });
    EXPECT_EQ(event->operation(), AddRemoveOp::remove);
    EXPECT_EQ(event->device()->address(), ZwaveAddress(home, 3));
    waitForStop(client, removeNode);
}

TEST_P(NetworkMessages, ExclusionOfANodeOfAnotherNetworkHasNoDevice) {
    StreamDaemon const daemon(GetParam(), network(R"(, "leaving": [{"node": 0, "afterMs": 20}])"));
    MessageClient client(daemon.port());
    auto const answer = client.ask(change(AddRemoveOp::remove));
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_FALSE(answer->device());
    EXPECT_THAT(nodes(client), ElementsAre(1, 2, 3, 9));
}

TEST_P(NetworkMessages, AbortEndsTheModeAndBothRequestsAreAnswered) {
    for (auto const& [operation, function] :
         {std::pair(AddRemoveOp::add, addNode), std::pair(AddRemoveOp::remove, removeNode)}) {
        StreamDaemon const daemon(GetParam(), network(""));
        MessageClient client(daemon.port());
        MessageClient other(daemon.port());
        client.subscribe({ControlCommandMsg::NAME});
        auto const request = change(operation);
        client.tell(*request);
        client.progressOf(request);
        EXPECT_EQ(other.ask(abortion(operation))->result(), ZResult::success);
        EXPECT_EQ(client.answerTo(request)->result(), ZResult::failure);
        waitForStop(client, function);
    }
}

TEST_P(NetworkMessages, AbortWithoutARunningModeIsRejected) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    EXPECT_EQ(client.ask(abortion(AddRemoveOp::add))->result(), ZResult::rejected);
    auto const request = change(AddRemoveOp::add);
    client.tell(*request);
    client.progressOf(request);
    EXPECT_EQ(client.ask(abortion(AddRemoveOp::remove))->result(), ZResult::rejected);
    EXPECT_EQ(client.ask(abortion(AddRemoveOp::invalid))->result(), ZResult::success);
    EXPECT_EQ(client.answerTo(request)->result(), ZResult::failure);
}

TEST_P(NetworkMessages, DeadlineEndsTheModeWithTimeout) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME});
    EXPECT_EQ(client.ask(change(AddRemoveOp::add, 1))->result(), ZResult::timeout);
    waitForStop(client, addNode);
    EXPECT_EQ(client.ask(change(AddRemoveOp::remove, 1))->result(), ZResult::timeout); // the network is free again
}

TEST_P(NetworkMessages, RequestWithoutAnOperationIsRejected) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    EXPECT_EQ(client.ask(change(AddRemoveOp::invalid))->result(), ZResult::rejected);
}

TEST_P(NetworkMessages, JobsOfTheNetworkExcludeEachOther) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    MessageClient other(daemon.port());
    auto const request = change(AddRemoveOp::add);
    client.tell(*request);
    client.progressOf(request);
    EXPECT_EQ(other.ask(change(AddRemoveOp::add))->result(), ZResult::rejected);
    EXPECT_EQ(other.ask(change(AddRemoveOp::remove))->result(), ZResult::rejected);
    EXPECT_EQ(other.ask(LearnModeMsg::create(LearnMode::classic))->result(), ZResult::rejected);
    EXPECT_EQ(other.ask(RequestNeighborUpdateMsg::create(ZwaveAddress(home, 2)))->result(), ZResult::rejected);
    EXPECT_EQ(other.ask(ResetDefaultsMsg::create())->result(), ZResult::rejected);
}

TEST_P(NetworkMessages, ModeOfAClientThatVanishesIsOverWithinASecond) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient other(daemon.port());
    other.subscribe({"*"});
    for (auto const& [operation, function] :
         {std::pair(AddRemoveOp::add, addNode), std::pair(AddRemoveOp::remove, removeNode)}) {
        auto const request = change(operation);
        MessageClient vanishing(daemon.port());
        vanishing.tell(*request);
        vanishing.progressOf(request);
        auto const start = std::chrono::steady_clock::now();
        vanishing.close();
        waitForStop(other, function);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
        waitForLastStop(other, function);
    }
}

TEST_P(NetworkMessages, ModeOfAClientThatEndsItsOutputIsOverAndAnswered) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    auto const request = change(AddRemoveOp::add);
    client.tell(*request);
    client.progressOf(request);
    client.endOutput();
    EXPECT_EQ(client.answerTo(request)->result(), ZResult::failure);
}

TEST_P(NetworkMessages, ControllerThatComesBecomesThePrimaryOneAndTheModuleASecondary) {
    StreamDaemon const daemon(
        GetParam(), network(R"(, "joining": [{"afterMs": 20, "basic": "02", "generic": "02", "specific": "01"}])"));
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME});
    auto const request = AddRemoveNodeMsg::create(AddRemoveOp::add, false, ZResult::none, 20, true);
    client.tell(*request);
    EXPECT_EQ(client.waitForCall(controllerChange).at(0), 2);
    client.progressOf(request);
    auto const answer = client.answerTo(request);
    EXPECT_EQ(answer->result(), ZResult::success);
    ASSERT_TRUE(answer->device());
    EXPECT_EQ(answer->device()->address(), ZwaveAddress(home, 4));
    EXPECT_THAT(nodes(client), ElementsAre(1, 2, 3, 4, 9));
    waitForLastStop(client, controllerChange);
    // What was primary may not take nodes in any more.
    EXPECT_EQ(client.ask(change(AddRemoveOp::add))->result(), ZResult::failure);
}

TEST_P(NetworkMessages, ControllerChangeIsBrokenOffByAnAbortAndByTheEndOfItsClient) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME});
    auto const request = AddRemoveNodeMsg::create(AddRemoveOp::add, false, ZResult::none, 20, true);
    client.tell(*request);
    client.progressOf(request);
    EXPECT_EQ(client.ask(AddRemoveNodeMsg::create(AddRemoveOp::add, true, ZResult::none, 0, true))->result(),
              ZResult::success);
    EXPECT_EQ(client.answerTo(request)->result(), ZResult::failure);
    waitForLastStop(client, controllerChange);
    {
        MessageClient vanishes(daemon.port());
        auto const again = AddRemoveNodeMsg::create(AddRemoveOp::add, false, ZResult::none, 20, true);
        vanishes.tell(*again);
        vanishes.progressOf(again);
    }
    waitForLastStop(client, controllerChange);
    EXPECT_EQ(client.ask(change(AddRemoveOp::add, 1))->result(), ZResult::timeout); // the module is in no mode
}

TEST_P(NetworkMessages, ControllerChangeIsRejectedWhereTheModuleDoesNotKnowIt) {
    StreamDaemon const daemon(GetParam(), network(R"(, "module": {"withoutFunctions": ["4d"]})"));
    MessageClient client(daemon.port());
    auto const request = AddRemoveNodeMsg::create(AddRemoveOp::add, false, ZResult::none, 1, true);
    EXPECT_EQ(client.ask(request)->result(), ZResult::rejected);
    auto const removal = AddRemoveNodeMsg::create(AddRemoveOp::remove, false, ZResult::none, 1, true);
    EXPECT_EQ(client.ask(removal)->result(), ZResult::rejected);
}

TEST_P(NetworkMessages, LearnModeJoinsTheOtherNetwork) {
    auto const alone =
        R"({"homeId": "c0ffee01", "nodes": [], "otherNetwork": {"homeId": "deadbeef", "node": 7, "afterMs": 20}})";
    StreamDaemon const daemon(GetParam(), {"--network", directory_.write("alone.json", alone)});
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME});
    auto const request = LearnModeMsg::create(LearnMode::classic);
    client.tell(*request);
    EXPECT_EQ(client.waitForCall(setLearnMode).at(0), 1);
    EXPECT_EQ(client.progressOf(request)->status(), LearnModeStatus::started);
    auto const answer = client.answerTo(request);
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(answer->status(), LearnModeStatus::done);
    auto const known = client.ask(NodeInformationMsg::create(GetNodesOp::get, DisplayOption::none, {}));
    EXPECT_EQ(known->devices().count({0xDEADBEEF, 7}), 1U);
}

TEST_P(NetworkMessages, LearnModeIsEndedByItsModeDisabledAndByItsDeadlineInMilliseconds) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME});
    EXPECT_EQ(client.ask(LearnModeMsg::create(LearnMode::disabled))->result(), ZResult::rejected);
    auto const request = LearnModeMsg::create(LearnMode::networkWideInclusion);
    client.tell(*request);
    client.waitForCall(setLearnMode);
    EXPECT_EQ(client.ask(LearnModeMsg::create(LearnMode::disabled))->result(), ZResult::success);
    EXPECT_EQ(client.answerTo(request)->result(), ZResult::failure);
    auto const brief = LearnModeMsg::create(LearnMode::classic, ZResult::none, LearnModeStatus::none, 100);
    EXPECT_EQ(client.ask(brief)->result(), ZResult::timeout);
}

TEST_P(NetworkMessages, ResetEmptiesTheNodeTableAndIsAnnounced) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    MessageClient other(daemon.port());
    client.subscribe({ControlCommandMsg::NAME});
    other.subscribe({ResetDefaultsMsg::NAME});
    auto const request = ResetDefaultsMsg::create();
    client.tell(*request);
    client.waitForCall(setDefault);
    EXPECT_EQ(client.answerTo(request)->result(), ZResult::success);
    EXPECT_THAT(nodes(client), ElementsAre(1));
    EXPECT_EQ(other.waitForAny<ResetDefaultsMsg>()->result(), ZResult::success);
}

TEST_P(NetworkMessages, NodeInformationFrameGoesToOneNodeOrToAll) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME});
    for (auto const node : {2, 255}) {
        auto const request = SendNifMsg::create(static_cast<unsigned char>(node), TransmitOption::ack);
        client.tell(*request);
        while (client.waitForCall(sendNodeInformation).at(0) != node) {} // a frame may have been sent again
        EXPECT_EQ(client.answerTo(request)->result(), ZResult::success);
    }
    EXPECT_EQ(client.ask(SendNifMsg::create(77, TransmitOption::ack))->result(), ZResult::rejected);
}

boost::shared_ptr<ManageFailedNodeMsg> failed(int operation, unsigned char node) {
    return ManageFailedNodeMsg::create(static_cast<ManageFailedNodeOp::Enum>(operation), ZwaveAddress(home, node),
                                       ZResult::none, ManageFailedNodeStatus::invalid);
}

TEST_P(NetworkMessages, FailedNodeIsTriedAndThenRemoved) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME});
    auto const request = failed(ManageFailedNodeOp::remove, 9);
    client.tell(*request);
    client.waitForCall(isFailedNode);
    client.waitForCall(removeFailedNode);
    auto const answer = client.answerTo(request);
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(answer->status(), ManageFailedNodeStatus::removed);
    EXPECT_THAT(nodes(client), ElementsAre(1, 2, 3));
}

TEST_P(NetworkMessages, NodeThatWorksIsNotRemoved) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    auto const answer = client.ask(failed(ManageFailedNodeOp::remove, 2));
    EXPECT_EQ(answer->result(), ZResult::failure);
    EXPECT_EQ(answer->status(), ManageFailedNodeStatus::nodeNotFailed);
    EXPECT_THAT(nodes(client), ElementsAre(1, 2, 3, 9));
}

TEST_P(NetworkMessages, UnknownNodeAndMissingOperationsAreToldApart) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    auto const unknown = client.ask(failed(ManageFailedNodeOp::remove, 77));
    EXPECT_EQ(unknown->result(), ZResult::nodeNotFound);
    EXPECT_EQ(unknown->status(), ManageFailedNodeStatus::nodeNotFound);
    for (auto const operation : {0, 3, 4}) {
        EXPECT_EQ(client.ask(failed(operation, 9))->result(), ZResult::rejected) << operation;
    }
    EXPECT_EQ(client.ask(failed(ManageFailedNodeOp::abort, 9))->result(), ZResult::rejected);
}

TEST_P(NetworkMessages, ReplacementWaitsForTheNewNodeAndTakesIt) {
    StreamDaemon const daemon(GetParam(), network(R"(, "joining": [{"afterMs": 20}])"));
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME});
    auto const request = failed(ManageFailedNodeOp::replace, 9);
    client.tell(*request);
    client.waitForCall(replaceFailedNode);
    EXPECT_EQ(client.progressOf(request)->status(), ManageFailedNodeStatus::replace);
    auto const answer = client.answerTo(request);
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(answer->status(), ManageFailedNodeStatus::replaced);
    EXPECT_THAT(nodes(client), ElementsAre(1, 2, 3, 9));
}

TEST_P(NetworkMessages, ReplacementIsAborted) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    auto const request = failed(ManageFailedNodeOp::replace | ManageFailedNodeOp::force, 9);
    client.ask(PingMsg::create(ZwaveAddress(home, 9))); // so that the module has it among the failed ones
    client.tell(*request);
    client.progressOf(request);
    auto const abort = client.ask(failed(ManageFailedNodeOp::abort, 9));
    EXPECT_EQ(abort->result(), ZResult::success);
    EXPECT_EQ(abort->status(), ManageFailedNodeStatus::aborting);
    EXPECT_EQ(client.answerTo(request)->result(), ZResult::failure);
}

TEST_P(NetworkMessages, NeighborUpdateStartsAndIsDone) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME});
    auto const request = RequestNeighborUpdateMsg::create(ZwaveAddress(home, 2));
    client.tell(*request);
    EXPECT_EQ(client.waitForCall(neighborUpdate).at(0), 2);
    EXPECT_EQ(client.progressOf(request)->status(), RequestNeighborUpdateStatus::started);
    auto const answer = client.answerTo(request);
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(answer->status(), RequestNeighborUpdateStatus::done);
    auto const dead = client.ask(RequestNeighborUpdateMsg::create(ZwaveAddress(home, 9)));
    EXPECT_EQ(dead->result(), ZResult::failure);
    EXPECT_EQ(dead->status(), RequestNeighborUpdateStatus::failed);
    auto const unknown = client.ask(RequestNeighborUpdateMsg::create(ZwaveAddress(home, 77)));
    EXPECT_EQ(unknown->result(), ZResult::nodeNotFound);
}

TEST_P(NetworkMessages, NetworkUpdateTellsHowTheUpdateControllerAnswered) {
    StreamDaemon const daemon(GetParam(), network(""));
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME});
    auto const request = RequestNetworkUpdateMsg::create();
    client.tell(*request);
    client.waitForCall(networkUpdate);
    auto const answer = client.answerTo(request);
    EXPECT_EQ(answer->status() == RequestNetworkUpdateStatus::done, answer->result() == ZResult::success);
}

} // namespace
