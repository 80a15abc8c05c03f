// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ControllerStage.h"
#include "zwave/libcontroller/jobs/FactoryReset.h"
#include "zwave/libcontroller/jobs/FailedNode.h"
#include "zwave/libcontroller/jobs/LearnMode.h"
#include "zwave/libcontroller/jobs/NeighborUpdate.h"
#include "zwave/libcontroller/jobs/NetworkUpdate.h"
#include "zwave/libcontroller/jobs/NodeInformationFrame.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zorv::controller {

namespace {

using Lines = std::vector<std::string>;
using serialapi::Frame;
using serialapi::Milliseconds;

constexpr Milliseconds byDefault{0};

struct Jobs : testing::Test, ControllerStage {
    explicit Jobs(bool isBridge = false) : ControllerStage(isBridge) { open(); }

    void begin(std::shared_ptr<Job> const& job) { submission = submit(job); }
    void cancel() {
        controller.cancel(submission.job, now);
        play();
    }

    Submission submission;
    int told = 0;
    std::function<void()> count = [this] { ++told; };
};

// ---- neighbour update

using ControllerNeighborUpdate = Jobs;

TEST_F(ControllerNeighborUpdate, EndsOnceTheNodeHasFoundOut) {
    begin(std::make_shared<NeighborUpdate>(5, byDefault, count));
    EXPECT_EQ(module.takeHeard(), Lines{"48 05 01"});
    hears(0x48, {1, 0x21});
    hears(0x48, {1, 0x21});
    EXPECT_EQ(told, 1);
    EXPECT_EQ(takeEnds(), Lines{});
    hears(0x48, {1, 0x22});
    EXPECT_EQ(takeEnds(), Lines{"done"});
}

TEST_F(ControllerNeighborUpdate, FailsWhereTheNodeDoes) {
    begin(std::make_shared<NeighborUpdate>(5, byDefault));
    hears(0x48, {1, 0x23});
    EXPECT_EQ(takeEnds(), Lines{"failed: the node has not found out"});
}

TEST_F(ControllerNeighborUpdate, TimesOutWithoutACallback) {
    begin(std::make_shared<NeighborUpdate>(5, Milliseconds(90'000)));
    passes(Milliseconds(89'999));
    EXPECT_EQ(takeEnds(), Lines{});
    passes(Milliseconds(1));
    EXPECT_EQ(takeEnds(), Lines{"timed out"});
    EXPECT_EQ(controller.deadline(), std::nullopt);
}

TEST_F(ControllerNeighborUpdate, WaitsNoLongerWhereItIsCancelled) {
    begin(std::make_shared<NeighborUpdate>(5, byDefault));
    hears(0x48, {1, 0x21});
    cancel();
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
    hears(0x48, {1, 0x22});
    EXPECT_EQ(takeEnds(), Lines{});
}

TEST_F(ControllerNeighborUpdate, IsRefusedForANodeThatIsNotThere) {
    begin(std::make_shared<NeighborUpdate>(9, byDefault));
    EXPECT_EQ(submission.reason, "the network has no node 9");
}

// ---- network update

using ControllerNetworkUpdate = Jobs;

TEST_F(ControllerNetworkUpdate, EndsWithTheAnswerOfTheUpdateController) {
    module.answers<serialapi::RequestNetworkUpdate>({1});
    auto const job = std::make_shared<NetworkUpdate>(byDefault);
    begin(job);
    EXPECT_EQ(module.takeHeard(), Lines{"53 01"});
    hears(0x53, {1, 0});
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(job->status(), 0);
}

TEST_F(ControllerNetworkUpdate, FailsWhereTheUpdateControllerIsBusy) {
    module.answers<serialapi::RequestNetworkUpdate>({1});
    auto const job = std::make_shared<NetworkUpdate>(byDefault);
    begin(job);
    hears(0x53, {1, 2});
    EXPECT_EQ(takeEnds(), Lines{"failed: the update controller has answered 2"});
    EXPECT_EQ(job->status(), 2);
}

TEST_F(ControllerNetworkUpdate, FailsWhereThereIsNoUpdateController) {
    module.answers<serialapi::RequestNetworkUpdate>({0});
    begin(std::make_shared<NetworkUpdate>(byDefault));
    EXPECT_EQ(takeEnds(), Lines{"failed: the module has refused it"});
}

TEST_F(ControllerNetworkUpdate, LearnsOfTheNodesThatOthersHaveTakenInAndOut) {
    hears(0x49, {0x40, 9, 4, 4, 0x10, 1, 0x25});
    hears(0x49, {0x20, 5, 0});
    EXPECT_EQ(diary.take(), (Lines{"added c0ffee01:9", "removed c0ffee01:5"}));
    EXPECT_TRUE(supports(*controller.network().nodes.find(9), CommandClassType::switchBinary));
}

// ---- reset

struct ControllerReset : Jobs {
    ControllerReset() {
        module.on<serialapi::SetDefault>([](Bytes const& parameters) {
            return std::vector<Frame>{ScriptedModule::request(0x42, {parameters.at(0)})};
        });
    }
};

TEST_F(ControllerReset, EmptiesTheTable) {
    hasNodes({1});
    module.answers<serialapi::MemoryGetId>({0xD0, 0, 0, 2, 1});
    begin(std::make_shared<FactoryReset>(byDefault));
    EXPECT_EQ(module.takeHeard().front(), "42 01");
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(diary.take(),
              (Lines{"removed c0ffee01:1", "removed c0ffee01:5", "removed c0ffee01:8", "added d0000002:1"}));
}

TEST_F(ControllerReset, FailsWhereTheModuleKeepsItsNodes) {
    begin(std::make_shared<FactoryReset>(byDefault));
    EXPECT_EQ(takeEnds(), Lines{"failed: the module has kept its nodes"});
}

TEST_F(ControllerReset, FailsWhereTheModuleDoesNotCallBack) {
    module.isSilentOn<serialapi::SetDefault>();
    begin(std::make_shared<FactoryReset>(byDefault));
    passes(Milliseconds(10'000));
    EXPECT_EQ(takeEnds(), Lines{"failed: the module does not call back"});
}

TEST_F(ControllerReset, ReadsTheModuleAlsoWhereItIsCancelled) {
    module.isSilentOn<serialapi::SetDefault>();
    hasNodes({1});
    begin(std::make_shared<FactoryReset>(byDefault));
    cancel();
    EXPECT_EQ(takeEnds(), Lines{});
    hears(0x42, {1});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
    EXPECT_EQ(controller.network().nodes.devices().size(), 1U);
}

TEST_F(ControllerReset, AwaitsTheRestartOfANewerModule) {
    module.on<serialapi::GetInitData>([](Bytes const&) {
        Bytes data{8, 0x08, 29, 1};
        data.resize(3 + 29);
        data.insert(data.end(), {7, 0});
        return std::vector<Frame>{ScriptedModule::response(0x02, data)};
    });
    hears(0x0A, {3, 0, 1, 2, 1, 0}); // the stage now is one of the 700 series
    diary.take();
    module.takeHeard();
    begin(std::make_shared<FactoryReset>(byDefault));
    EXPECT_EQ(module.takeHeard(), Lines{"42 01"});
    hears(0x0A, {7, 0, 1, 2, 1, 0});
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(controller.state(), ModuleState::ready);
    EXPECT_EQ(diary.take(), Lines{});
}

// ---- failed node

struct ControllerFailedNode : Jobs {
    ControllerFailedNode() {
        pingIsAnsweredWith(1);
        module.answers<serialapi::IsFailedNode>({1});
        module.answers<serialapi::RemoveFailedNode>({0});
        module.answers<serialapi::ReplaceFailedNode>({0});
    }
    void pingIsAnsweredWith(Byte status) {
        module.on<serialapi::SendData>([status](Bytes const& parameters) {
            return std::vector<Frame>{ScriptedModule::response(0x13, {1}),
                                      ScriptedModule::request(0x13, {parameters.back(), status})};
        });
    }
    std::shared_ptr<FailedNode> removal(bool force = false) {
        return std::make_shared<FailedNode>(FailedNode::Action::remove, NodeId{5}, force, byDefault);
    }
    std::shared_ptr<FailedNode> replacement() {
        return std::make_shared<FailedNode>(FailedNode::Action::replace, NodeId{5}, false, byDefault, count);
    }
};

TEST_F(ControllerFailedNode, IsRemovedAfterItWasTried) {
    begin(removal());
    EXPECT_EQ(module.takeHeard(), (Lines{"13 05 01 00 25 01", "62 05", "61 05 02"}));
    EXPECT_EQ(controller.network().nodes.find(5)->deviceNetworkStatus(), DeviceNetworkStatus::failed);
    hears(0x61, {2, 1});
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(diary.take(), Lines{"removed c0ffee01:5"});
}

TEST_F(ControllerFailedNode, IsNotTriedWhereTheRemovalIsForced) {
    begin(removal(true));
    EXPECT_EQ(module.takeHeard(), Lines{"61 05 01"});
}

TEST_F(ControllerFailedNode, StaysWhereItAnswers) {
    pingIsAnsweredWith(0);
    auto const job = removal();
    begin(job);
    EXPECT_EQ(takeEnds(), Lines{"failed: the node works"});
    EXPECT_TRUE(job->doesNodeWork());
    EXPECT_EQ(diary.take(), Lines{});
}

TEST_F(ControllerFailedNode, StaysWhereTheModuleDoesNotTakeItForFailed) {
    module.answers<serialapi::IsFailedNode>({0});
    begin(removal());
    EXPECT_EQ(takeEnds(), Lines{"failed: the module does not have the node among the failed ones"});
}

TEST_F(ControllerFailedNode, StaysWhereTheModuleRefuses) {
    module.answers<serialapi::RemoveFailedNode>({0x10});
    begin(removal());
    EXPECT_EQ(takeEnds(), Lines{"failed: the module is busy"});
}

TEST_F(ControllerFailedNode, StaysWhereItAnswersTheModuleAtLast) {
    auto const job = removal();
    begin(job);
    hears(0x61, {2, 0});
    EXPECT_EQ(takeEnds(), Lines{"failed: the node works"});
    EXPECT_NE(controller.network().nodes.find(5), nullptr);
}

TEST_F(ControllerFailedNode, StaysWhereTheModuleCannotRemoveIt) {
    begin(removal());
    hears(0x61, {2, 2});
    EXPECT_EQ(takeEnds(), Lines{"failed: the module could not remove the node"});
    EXPECT_NE(controller.network().nodes.find(5), nullptr);
}

TEST_F(ControllerFailedNode, StaysWhereTheModuleDoesNotCallBack) {
    begin(removal());
    passes(limits::defaultJobTime);
    EXPECT_EQ(takeEnds(), Lines{"timed out"});
    EXPECT_NE(controller.network().nodes.find(5), nullptr);
}

TEST_F(ControllerFailedNode, IsNotTheModulesOwn) {
    EXPECT_EQ(submit(std::make_shared<FailedNode>(FailedNode::Action::remove, NodeId{1}, true, byDefault)).reason,
              "it is the module's own node");
}

TEST_F(ControllerFailedNode, IsReplacedByANewOne) {
    begin(replacement());
    hears(0x63, {2, 3});
    EXPECT_EQ(told, 1);
    EXPECT_EQ(takeEnds(), Lines{});
    hears(0x63, {2, 4});
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(diary.take(), (Lines{"removed c0ffee01:5", "added c0ffee01:5"}));
}

TEST_F(ControllerFailedNode, KeepsItsPlaceWhereItsReplacementIsCancelled) {
    begin(replacement());
    hears(0x63, {2, 3});
    module.takeHeard();
    cancel();
    EXPECT_EQ(module.takeHeard(), Lines{"4a 05"});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
    EXPECT_EQ(diary.take(), Lines{});
}

TEST_F(ControllerFailedNode, KeepsItsPlaceWhereItsReplacementFails) {
    begin(replacement());
    hears(0x63, {2, 3});
    hears(0x63, {2, 5});
    EXPECT_EQ(takeEnds(), Lines{"failed: the module could not replace the node"});
    EXPECT_NE(controller.network().nodes.find(5), nullptr);
}

// ---- learn mode

using ControllerLearnMode = Jobs;

TEST_F(ControllerLearnMode, ReadsTheModuleOnceItIsInAnotherNetwork) {
    begin(std::make_shared<LearnModeJob>(LearnMode::networkWideInclusion, byDefault, count));
    EXPECT_EQ(module.takeHeard(), Lines{"50 02 01"});
    hears(0x50, {1, 1, 0, 0});
    EXPECT_EQ(told, 1);
    module.answers<serialapi::MemoryGetId>({0xD0, 0, 0, 2, 7});
    hasNodes({1, 7});
    hears(0x50, {1, 6, 7, 0});
    EXPECT_EQ(module.takeHeard().front(), "50 00 00");
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(controller.network().homeId, 0xD0000002U);
    EXPECT_EQ(controller.network().ownNode, 7);
}

TEST_F(ControllerLearnMode, IsLeftWhereItIsCancelled) {
    begin(std::make_shared<LearnModeJob>(LearnMode::classic, byDefault));
    module.takeHeard();
    cancel();
    EXPECT_EQ(module.takeHeard(), Lines{"50 00 00"});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
}

TEST_F(ControllerLearnMode, IsLeftOnceWhereItEndsWhileItIsBeingLeft) {
    begin(std::make_shared<LearnModeJob>(LearnMode::classic, byDefault));
    module.takeHeard();
    controller.cancel(submission.job, now);
    controller.receive(ScriptedModule::request(0x50, {1, 7, 0, 0}).encode(), now); // crosses it on the line
    play();
    EXPECT_EQ(module.takeHeard(), Lines{"50 00 00"});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
}

TEST_F(ControllerLearnMode, IsLeftAtItsDeadline) {
    begin(std::make_shared<LearnModeJob>(LearnMode::classic, Milliseconds(2000)));
    module.takeHeard();
    passes(Milliseconds(2000));
    EXPECT_EQ(module.takeHeard(), Lines{"50 00 00"});
    EXPECT_EQ(takeEnds(), Lines{"timed out"});
}

TEST_F(ControllerLearnMode, IsNotLeftOnceAnotherControllerHasBegun) {
    begin(std::make_shared<LearnModeJob>(LearnMode::classic, byDefault));
    hears(0x50, {1, 1, 0, 0});
    module.takeHeard();
    cancel();
    EXPECT_EQ(module.takeHeard(), Lines{});
    hears(0x50, {1, 6, 7, 0});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
}

TEST_F(ControllerLearnMode, GivesUpAControllerThatDoesNotGetThrough) {
    begin(std::make_shared<LearnModeJob>(LearnMode::classic, byDefault));
    hears(0x50, {1, 1, 0, 0});
    module.takeHeard();
    passes(Milliseconds(60'000));
    EXPECT_EQ(module.takeHeard(), Lines{"50 00 00"});
    EXPECT_EQ(takeEnds(), Lines{"failed: the other controller does not get through"});
}

TEST_F(ControllerLearnMode, FailsWithTheOtherController) {
    begin(std::make_shared<LearnModeJob>(LearnMode::classic, byDefault));
    hears(0x50, {1, 7, 0, 0});
    EXPECT_EQ(takeEnds(), Lines{"failed: the other controller has failed with this one"});
}

TEST_F(ControllerLearnMode, FailsWhereTheModuleRefusesIt) {
    module.answers<serialapi::SetLearnMode>({0});
    begin(std::make_shared<LearnModeJob>(LearnMode::classic, byDefault));
    EXPECT_EQ(takeEnds(), Lines{"failed: the module has refused it"});
}

TEST_F(ControllerLearnMode, ResetsAModuleThatDoesNotLeaveIt) {
    begin(std::make_shared<LearnModeJob>(LearnMode::classic, byDefault));
    module.isSilentOn<serialapi::SetLearnMode>();
    cancel();
    passes(limits::stopTime);
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
    EXPECT_EQ(diary.take(), (Lines{"the module is reset: it does not leave learn mode", "module starting"}));
}

TEST_F(ControllerLearnMode, IsRefusedWithoutAMode) {
    EXPECT_EQ(submit(std::make_shared<LearnModeJob>(LearnMode::disabled, byDefault)).refusal, Refusal::impossible);
}

// ---- node information frame

using ControllerNodeInformationFrame = Jobs;

TEST_F(ControllerNodeInformationFrame, GoesToAll) {
    module.answers<serialapi::SendNodeInformation>({1});
    begin(std::make_shared<NodeInformationFrame>(NodeId{255}, Byte{0x25}, byDefault));
    EXPECT_EQ(module.takeHeard(), Lines{"12 ff 25 01"});
    hears(0x12, {1, 0});
    EXPECT_EQ(takeEnds(), Lines{"done"});
}

TEST_F(ControllerNodeInformationFrame, FailsWhereItCannotBeSent) {
    module.answers<serialapi::SendNodeInformation>({1});
    begin(std::make_shared<NodeInformationFrame>(NodeId{5}, Byte{0x25}, byDefault));
    hears(0x12, {1, 2});
    EXPECT_EQ(takeEnds(), Lines{"failed: not sent"});
}

TEST_F(ControllerNodeInformationFrame, FailsWithoutAReport) {
    module.answers<serialapi::SendNodeInformation>({1});
    begin(std::make_shared<NodeInformationFrame>(NodeId{5}, Byte{0x25}, byDefault));
    passes(serialapi::limits::callbackTime);
    EXPECT_EQ(takeEnds(), Lines{"failed: the module does not call back"});
}

TEST_F(ControllerNodeInformationFrame, IsRefusedForANodeThatIsNotThere) {
    EXPECT_EQ(submit(std::make_shared<NodeInformationFrame>(NodeId{9}, Byte{0x25}, byDefault)).reason,
              "the network has no node 9");
}

} // namespace

} // namespace zorv::controller
