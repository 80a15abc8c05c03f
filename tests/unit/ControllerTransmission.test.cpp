// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/Transmission.h"

#include "tests/support/ControllerStage.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zorv::controller {

namespace {

using Lines = std::vector<std::string>;
using serialapi::Frame;
using serialapi::Milliseconds;
using serialapi::SendData;

/// Answers of a module to a frame that it sends: taken, and then, by the status, how that went.
std::vector<Frame> taken() { return {ScriptedModule::response(SendData::id, {1})}; }
std::vector<Frame> refused() { return {ScriptedModule::response(SendData::id, {0})}; }
std::vector<Frame> sent(Byte callbackId, Byte status) {
    return {ScriptedModule::response(SendData::id, {1}),
            ScriptedModule::request(SendData::id, {callbackId, status, Byte{0}, Byte{2}})};
}

Transmission::Order order(NodeId node, Bytes data = {0x25, 0x01, 0xFF}) {
    Transmission::Order order;
    order.nodes = {node};
    order.data = std::move(data);
    return order;
}

struct ControllerTransmission : testing::Test, ControllerStage {
    ControllerTransmission() {
        open();
        allIsSentWith(0);
    }
    void allIsSentWith(Byte status) {
        module.on<SendData>([status](Bytes const& parameters) { return sent(parameters.back(), status); });
    }
};

TEST_F(ControllerTransmission, EndsWithTheReportOfTheModule) {
    auto const job = std::make_shared<Transmission>(order(5));
    ASSERT_TRUE(submit(job));
    EXPECT_EQ(module.takeHeard(), Lines{"13 05 03 25 01 ff 25 01"});
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(job->status(), 0);
    ASSERT_TRUE(job->report());
    EXPECT_EQ(job->report()->ticks, 2);
    EXPECT_EQ(controller.network().nodes.find(5)->deviceNetworkStatus(), DeviceNetworkStatus::online);
}

TEST_F(ControllerTransmission, MeasuresTheTimeFromTheSendingToTheReport) {
    module.on<SendData>([](Bytes const&) { return taken(); });
    auto const job = makePing(5, Milliseconds(0));
    submit(job);
    EXPECT_EQ(module.takeHeard(), Lines{"13 05 01 00 25 01"});
    passes(Milliseconds(31));
    hears(SendData::id, {1, 0});
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(job->latency(), Milliseconds(31));
}

TEST_F(ControllerTransmission, FailsWhereTheNodeDoesNotAcknowledge) {
    allIsSentWith(1);
    submit(std::make_shared<Transmission>(order(5)));
    EXPECT_EQ(takeEnds(), Lines{"failed: not acknowledged"});
    EXPECT_EQ(controller.network().nodes.find(5)->deviceNetworkStatus(), DeviceNetworkStatus::offline);
}

TEST_F(ControllerTransmission, LeavesTheNodeAsItIsWhereTheRadioFails) {
    allIsSentWith(2);
    submit(std::make_shared<Transmission>(order(5)));
    EXPECT_EQ(takeEnds(), Lines{"failed: the radio is busy or jammed"});
    EXPECT_EQ(controller.network().nodes.find(5)->deviceNetworkStatus(), DeviceNetworkStatus::unknown);
}

TEST_F(ControllerTransmission, RefusesFramesThatCannotBeSent) {
    EXPECT_EQ(submit(std::make_shared<Transmission>(order(9))).reason, "the network has no node 9");
    EXPECT_EQ(submit(std::make_shared<Transmission>(order(5, {}))).reason, "its data does not fit into a frame");
    auto many = order(5);
    many.nodes.resize(250, 5);
    EXPECT_EQ(submit(std::make_shared<Transmission>(many)).reason, "it names too many nodes");
    EXPECT_EQ(submit(std::make_shared<Transmission>(order(5, Bytes(55)))).refusal, Refusal::impossible);
    EXPECT_EQ(submit(std::make_shared<Transmission>(Transmission::Order{})).reason, "it names no node");
    EXPECT_EQ(module.takeHeard(), Lines{});
}

TEST_F(ControllerTransmission, SendsToSeveralNodesByOneFrame) {
    module.on<serialapi::SendDataMulti>([](Bytes const& parameters) -> std::vector<Frame> {
        return {ScriptedModule::response(0x14, {1}), ScriptedModule::request(0x14, {parameters.back(), Byte{0}})};
    });
    auto several = order(5);
    several.nodes = {5, 8};
    submit(std::make_shared<Transmission>(several));
    EXPECT_EQ(module.takeHeard(), Lines{"14 02 05 08 03 25 01 ff 25 01"});
    EXPECT_EQ(takeEnds(), Lines{"done"});
}

TEST_F(ControllerTransmission, SendsToAllNodesWithoutKnowingThem) {
    auto all = order(255);
    all.options = 0x24;
    submit(std::make_shared<Transmission>(all));
    EXPECT_EQ(module.takeHeard(), Lines{"13 ff 03 25 01 ff 24 01"});
    EXPECT_EQ(takeEnds(), Lines{"done"});
}

TEST_F(ControllerTransmission, TellsThatTheModuleHasTakenTheFrame) {
    module.on<SendData>([](Bytes const&) { return taken(); });
    int times = 0;
    submit(std::make_shared<Transmission>(order(5), [&times] { ++times; }));
    EXPECT_EQ(times, 1);
    EXPECT_EQ(takeEnds(), Lines{});
}

TEST_F(ControllerTransmission, OffersAFrameAgainThatTheModuleHasNoRoomFor) {
    module.on<SendData>([](Bytes const&) { return refused(); });
    submit(std::make_shared<Transmission>(order(5)));
    module.takeHeard();
    allIsSentWith(0);
    passes(Milliseconds(499));
    EXPECT_EQ(module.takeHeard(), Lines{});
    passes(Milliseconds(1));
    EXPECT_EQ(module.takeHeard(), Lines{"13 05 03 25 01 ff 25 02"});
    EXPECT_EQ(takeEnds(), Lines{"done"});
}

TEST_F(ControllerTransmission, GivesUpAFrameThatTheModuleNeverHasRoomFor) {
    module.on<SendData>([](Bytes const&) { return refused(); });
    int timesTaken = 0;
    submit(std::make_shared<Transmission>(order(5), [&timesTaken] { ++timesTaken; }));
    passes(Milliseconds(5000));
    EXPECT_EQ(module.takeHeard().size(), 5U);
    EXPECT_EQ(timesTaken, 0);
    EXPECT_EQ(takeEnds(), Lines{"failed: the module has refused it"});
}

TEST_F(ControllerTransmission, AbortsAFrameWhoseReportDoesNotCome) {
    module.on<SendData>([](Bytes const&) { return taken(); });
    auto const job = std::make_shared<Transmission>(order(5));
    submit(job);
    module.takeHeard();
    passes(Milliseconds(65'000));
    EXPECT_EQ(module.takeHeard(), Lines{"16"});
    hears(SendData::id, {1, 1});
    EXPECT_EQ(takeEnds(), Lines{"failed: not acknowledged"});
    EXPECT_EQ(controller.network().nodes.find(5)->deviceNetworkStatus(), DeviceNetworkStatus::unknown);
}

TEST_F(ControllerTransmission, ResetsAModuleThatCannotEvenAbortAFrame) {
    module.on<SendData>([](Bytes const&) { return taken(); });
    submit(std::make_shared<Transmission>(order(5)));
    passes(Milliseconds(70'000));
    EXPECT_EQ(takeEnds(), Lines{"failed: the module does not call back"});
    EXPECT_EQ(diary.take(), (Lines{"the module is reset: a frame cannot be ended", "module starting"}));
    passes(limits::restartTime);
    EXPECT_EQ(controller.state(), ModuleState::ready);
}

TEST_F(ControllerTransmission, IsAbortedAtItsDeadline) {
    module.on<SendData>([](Bytes const&) { return taken(); });
    auto soon = order(5);
    soon.time = Milliseconds(1000);
    submit(std::make_shared<Transmission>(soon));
    module.takeHeard();
    passes(Milliseconds(1000));
    EXPECT_EQ(module.takeHeard(), Lines{"16"});
    hears(SendData::id, {1, 1});
    EXPECT_EQ(takeEnds(), Lines{"timed out"});
}

TEST_F(ControllerTransmission, IsAbortedWhereItIsCancelled) {
    module.on<SendData>([](Bytes const&) { return taken(); });
    auto const submission = submit(std::make_shared<Transmission>(order(5)));
    module.takeHeard();
    EXPECT_TRUE(controller.cancel(submission.job, now));
    play();
    EXPECT_EQ(module.takeHeard(), Lines{"16"});
    EXPECT_EQ(takeEnds(), Lines{});
    hears(SendData::id, {1, 1});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
    EXPECT_FALSE(controller.cancel(submission.job, now));
}

TEST_F(ControllerTransmission, IsNotOfferedAgainOnceItIsCancelled) {
    module.isSilentOn<SendData>();
    auto const submission = submit(std::make_shared<Transmission>(order(5)));
    module.takeHeard();
    controller.cancel(submission.job, now);
    play();
    controller.receive(refused().front().encode(), now);
    play();
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
    passes(Milliseconds(5000));
    EXPECT_EQ(module.takeHeard(), Lines{"16"});
}

TEST_F(ControllerTransmission, TellsThatANodeSleepsWhichWasAwakeAndDoesNotAcknowledge) {
    hears(0x04, {0x00, 0x08, 0x02, 0x84, 0x07});
    ASSERT_EQ(controller.network().nodes.find(8)->wakeStatus(), WakeStatus::awake);
    allIsSentWith(1);
    submit(std::make_shared<Transmission>(order(8)));
    EXPECT_EQ(takeEnds(), Lines{"failed: not acknowledged"});
    EXPECT_EQ(controller.network().nodes.find(8)->wakeStatus(), WakeStatus::asleep);
}

TEST_F(ControllerTransmission, WaitsForTheOneBeforeIt) {
    module.on<SendData>([](Bytes const&) { return taken(); });
    submit(std::make_shared<Transmission>(order(5)));
    submit(std::make_shared<Transmission>(order(5, {0x25, 0x02})));
    EXPECT_EQ(module.takeHeard(), Lines{"13 05 03 25 01 ff 25 01"});
    EXPECT_EQ(controller.queues().waiting, 1U);
    hears(SendData::id, {1, 0});
    EXPECT_EQ(module.takeHeard(), Lines{"13 05 02 25 02 25 02"});
}

TEST_F(ControllerTransmission, GoesBeforeThoseOfLowerPriority) {
    module.on<SendData>([](Bytes const&) { return taken(); });
    submit(std::make_shared<Transmission>(order(5)));
    submit(std::make_shared<Transmission>(order(5, {0x20, 0x01})));
    auto urgent = order(5, {0x20, 0x02});
    urgent.priority = 1;
    submit(std::make_shared<Transmission>(urgent));
    module.takeHeard();
    hears(SendData::id, {1, 0});
    EXPECT_EQ(module.takeHeard(), Lines{"13 05 02 20 02 25 02"});
}

TEST_F(ControllerTransmission, WaitsForANodeToWakeUp) {
    submit(std::make_shared<Transmission>(order(8)));
    EXPECT_EQ(module.takeHeard(), Lines{});
    EXPECT_EQ(controller.queues().sleepers, 1U);
    hears(0x04, {0x00, 0x08, 0x02, 0x84, 0x07});
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(module.takeHeard().front(), "13 08 03 25 01 ff 25 01");
}

TEST_F(ControllerTransmission, TimesOutWhereItsNodeDoesNotWakeUp) {
    submit(std::make_shared<Transmission>(order(8)));
    passes(limits::defaultJobTime);
    EXPECT_EQ(module.takeHeard(), Lines{});
    EXPECT_EQ(takeEnds(), Lines{"timed out"});
}

TEST_F(ControllerTransmission, GoesToASleepingNodeAllTheSameWhereToldTo) {
    auto forced = order(8);
    forced.asleep = Transmission::Asleep::send;
    submit(std::make_shared<Transmission>(forced));
    EXPECT_EQ(module.takeHeard(), Lines{"13 08 03 25 01 ff 25 01"});
}

TEST_F(ControllerTransmission, DoesNotPingANodeThatSleeps) {
    auto const ping = makePing(8, Milliseconds(0));
    submit(ping);
    EXPECT_EQ(module.takeHeard(), Lines{});
    EXPECT_TRUE(ping->wasAsleep());
    EXPECT_EQ(takeEnds(), Lines{"failed: the node sleeps"});
}

TEST_F(ControllerTransmission, FailsWithAModuleThatRestartsMeanwhile) {
    module.on<SendData>([](Bytes const&) { return taken(); });
    submit(std::make_shared<Transmission>(order(5)));
    submit(std::make_shared<Transmission>(order(5, {0x25, 0x02})));
    allIsSentWith(0);
    hears(0x0A, {3, 0, 1, 2, 1, 0});
    EXPECT_EQ(takeEnds(), (Lines{"failed: the module has restarted", "done"}));
}

TEST_F(ControllerTransmission, FailsWithThePort) {
    module.on<SendData>([](Bytes const&) { return taken(); });
    submit(std::make_shared<Transmission>(order(5)));
    controller.lost(now);
    EXPECT_EQ(takeEnds(), Lines{"failed: the port is lost"});
    EXPECT_EQ(submit(std::make_shared<Transmission>(order(5))).refusal, Refusal::notReady);
}

TEST_F(ControllerTransmission, FailsWhereTheModuleDoesNotAcknowledge) {
    module.hang();
    submit(std::make_shared<Transmission>(order(5)));
    passes(Milliseconds(9700));
    EXPECT_EQ(takeEnds(), Lines{"failed: the module does not acknowledge"});
    EXPECT_EQ(diary.take(), (Lines{"the module is reset: the link is bad", "module starting"}));
}

TEST_F(ControllerTransmission, IsRefusedWhereTooManyWait) {
    module.on<SendData>([](Bytes const&) { return taken(); });
    for (std::size_t i = 0; i <= limits::waitingFrames; ++i) {
        ASSERT_TRUE(submit(std::make_shared<Transmission>(order(5))));
    }
    EXPECT_EQ(submit(std::make_shared<Transmission>(order(5))).refusal, Refusal::queueFull);
    EXPECT_TRUE(submit(std::make_shared<Transmission>(order(8))));
}

TEST_F(ControllerTransmission, NeverLastsLongerThanAnHour) {
    auto longest = order(8);
    longest.time = Milliseconds(7'200'000);
    submit(std::make_shared<Transmission>(longest));
    passes(Milliseconds(3'599'999));
    EXPECT_EQ(takeEnds(), Lines{});
    passes(Milliseconds(1));
    EXPECT_EQ(takeEnds(), Lines{"timed out"});
}

struct ControllerTransmissionByBridge : testing::Test, ControllerStage {
    ControllerTransmissionByBridge() : ControllerStage(true) { open(); }
};

TEST_F(ControllerTransmissionByBridge, NamesTheSource) {
    submit(std::make_shared<Transmission>(order(5)));
    EXPECT_EQ(module.takeHeard(), Lines{"a9 01 05 03 25 01 ff 25 00 00 00 00 01"});
}

TEST_F(ControllerTransmissionByBridge, NamesTheSourceOfAFrameToSeveralNodes) {
    auto several = order(5);
    several.nodes = {5, 8};
    submit(std::make_shared<Transmission>(several));
    EXPECT_EQ(module.takeHeard(), Lines{"ab 01 02 05 08 03 25 01 ff 25 01"});
}

TEST_F(ControllerTransmission, FailsWithThePortAlsoWhileItWaits) {
    module.on<SendData>([](Bytes const&) { return taken(); });
    for (NodeId const node : {NodeId{5}, NodeId{5}, NodeId{8}}) { // 8 sleeps
        submit(std::make_shared<Transmission>(order(node)));
    }
    controller.lost(now);
    EXPECT_EQ(takeEnds(), (Lines{"failed: the port is lost", "failed: the port is lost", "failed: the port is lost"}));
}

} // namespace

} // namespace zorv::controller
