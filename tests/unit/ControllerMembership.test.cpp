// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ControllerStage.h"
#include "zwave/libcontroller/jobs/ControllerShift.h"
#include "zwave/libcontroller/jobs/Exclusion.h"
#include "zwave/libcontroller/jobs/Inclusion.h"
#include "zwave/libcontroller/jobs/Transmission.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zorv::controller {

namespace {

using Lines = std::vector<std::string>;
using serialapi::Frame;
using serialapi::Milliseconds;

constexpr Byte add = 0x4A;
constexpr Byte remove = 0x4B;

char const* textOf(MembershipStage stage) {
    switch (stage) {
    case MembershipStage::ready: return "ready";
    case MembershipStage::nodeFound: return "node found";
    case MembershipStage::endNode: return "end node";
    case MembershipStage::controller: return "controller";
    case MembershipStage::protocolDone: return "protocol done";
    }
    return "";
}

struct ControllerMembership : testing::Test, ControllerStage {
    ControllerMembership() { open(); }

    template <class Job> std::shared_ptr<Job> begin(Milliseconds time = Milliseconds(0)) {
        auto const job = std::make_shared<Job>(time, [this](MembershipStage stage, NodeId node) {
            stages.push_back(std::string(textOf(stage)) + ' ' + std::to_string(node));
        });
        submission = submit(job);
        return job;
    }
    void cancel() {
        controller.cancel(submission.job, now);
        play();
    }

    Lines stages;
    Submission submission;
};

TEST_F(ControllerMembership, TakesANodeIn) {
    auto const job = begin<Inclusion>();
    EXPECT_EQ(module.takeHeard(), Lines{"4a c1 01"});
    hears(add, {1, 1, 0, 0});
    hears(add, {1, 2, 0, 0});
    hears(add, {1, 3, 9, 5, 4, 0x10, 1, 0x25, 0x86});
    hears(add, {1, 5, 9, 0});
    EXPECT_EQ(module.takeHeard(), Lines{"4a 05 01"});
    EXPECT_EQ(takeEnds(), Lines{});
    hears(add, {1, 6, 9, 0});
    EXPECT_EQ(module.takeHeard(), (Lines{"4a 05 00", "41 09"}));
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(job->node(), 9);
    EXPECT_EQ(stages, (Lines{"ready 0", "node found 0", "end node 9", "protocol done 9"}));
    EXPECT_EQ(diary.take(), Lines{"added c0ffee01:9"});
    auto const* const device = controller.network().nodes.find(9);
    ASSERT_NE(device, nullptr);
    EXPECT_TRUE(supports(*device, CommandClassType::version));
    EXPECT_FALSE(device->isSleeping());
}

TEST_F(ControllerMembership, StopsAnInclusionThatIsCancelledBeforeTheModuleIsReady) {
    begin<Inclusion>();
    module.takeHeard();
    cancel();
    EXPECT_EQ(module.takeHeard(), Lines{"4a 05 01"});
    hears(add, {1, 6, 0, 0});
    EXPECT_EQ(module.takeHeard(), Lines{"4a 05 00"});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
}

TEST_F(ControllerMembership, StopsAnInclusionThatIsCancelledWhileItWaitsForANode) {
    begin<Inclusion>();
    hears(add, {1, 1, 0, 0});
    module.takeHeard();
    cancel();
    EXPECT_EQ(module.takeHeard(), Lines{"4a 05 01"});
    hears(add, {1, 6, 0, 0});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
    EXPECT_EQ(diary.take(), Lines{});
}

TEST_F(ControllerMembership, NeverStopsAnInclusionThatHasFoundItsNode) {
    begin<Inclusion>();
    hears(add, {1, 1, 0, 0});
    hears(add, {1, 2, 0, 0});
    module.takeHeard();
    cancel();
    EXPECT_EQ(module.takeHeard(), Lines{});
    hears(add, {1, 3, 9, 3, 4, 0x10, 1});
    hears(add, {1, 5, 9, 0});
    hears(add, {1, 6, 9, 0});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
    EXPECT_EQ(diary.take(), Lines{"added c0ffee01:9"}) << "the node is in all the same";
}

TEST_F(ControllerMembership, GoesOnWithANodeThatIsFoundWhileTheInclusionIsBeingStopped) {
    begin<Inclusion>();
    hears(add, {1, 1, 0, 0});
    cancel();
    hears(add, {1, 2, 0, 0});
    module.takeHeard();
    passes(limits::stopTime);
    EXPECT_EQ(module.takeHeard(), Lines{});
    hears(add, {1, 3, 9, 3, 4, 0x10, 1});
    hears(add, {1, 5, 9, 0});
    EXPECT_EQ(module.takeHeard(), Lines{"4a 05 01"});
    hears(add, {1, 6, 9, 0});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
}

TEST_F(ControllerMembership, EndsAnInclusionToWhichNobodyComes) {
    begin<Inclusion>(Milliseconds(60'000));
    hears(add, {1, 1, 0, 0});
    module.takeHeard();
    passes(Milliseconds(59'999));
    EXPECT_EQ(module.takeHeard(), Lines{});
    passes(Milliseconds(1));
    EXPECT_EQ(module.takeHeard(), Lines{"4a 05 01"});
    hears(add, {1, 6, 0, 0});
    EXPECT_EQ(takeEnds(), Lines{"timed out"});
}

TEST_F(ControllerMembership, LetsAnInclusionThatHasFoundItsNodeEndWellAfterItsDeadline) {
    begin<Inclusion>(Milliseconds(1000));
    hears(add, {1, 1, 0, 0});
    hears(add, {1, 2, 0, 0});
    passes(Milliseconds(2000));
    hears(add, {1, 3, 9, 3, 4, 0x10, 1});
    hears(add, {1, 5, 9, 0});
    hears(add, {1, 6, 9, 0});
    EXPECT_EQ(takeEnds(), Lines{"done"});
}

TEST_F(ControllerMembership, EndsAnInclusionWhoseModuleDoesNotGetReady) {
    begin<Inclusion>();
    module.takeHeard();
    passes(Milliseconds(10'000));
    EXPECT_EQ(module.takeHeard(), Lines{"4a 05 01"});
    hears(add, {1, 6, 0, 0});
    EXPECT_EQ(takeEnds(), Lines{"failed: the module does not get ready"});
}

TEST_F(ControllerMembership, ResetsAModuleThatDoesNotLeaveInclusion) {
    begin<Inclusion>();
    hears(add, {1, 1, 0, 0});
    cancel();
    passes(limits::stopTime);
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
    EXPECT_EQ(diary.take(), (Lines{"the module is reset: it does not leave the mode of inclusion", "module starting"}));
    EXPECT_EQ(module.takeHeard().back(), "08");
}

TEST_F(ControllerMembership, GivesUpANodeThatDiesDuringItsInclusion) {
    begin<Inclusion>();
    hears(add, {1, 1, 0, 0});
    hears(add, {1, 2, 0, 0});
    module.takeHeard();
    passes(Milliseconds(76'000) + 2 * Milliseconds(217) - Milliseconds(1)); // two nodes listen
    EXPECT_EQ(module.takeHeard(), Lines{});
    passes(Milliseconds(1));
    EXPECT_EQ(module.takeHeard(), Lines{"4a 05 01"});
    hears(add, {1, 6, 0, 0});
    EXPECT_EQ(takeEnds(), Lines{"failed: the node was found, but not finished with"});
}

TEST_F(ControllerMembership, EndsAnInclusionThatTheModuleFails) {
    begin<Inclusion>();
    hears(add, {1, 1, 0, 0});
    hears(add, {1, 2, 0, 0});
    module.takeHeard();
    hears(add, {1, 7, 0, 0});
    EXPECT_EQ(module.takeHeard(), Lines{"4a 05 00"});
    EXPECT_EQ(takeEnds(), Lines{"failed: the module has failed with the node"});
}

TEST_F(ControllerMembership, EndsAnInclusionThatOnlyThePrimaryControllerMayBegin) {
    begin<Inclusion>();
    hears(add, {1, 0x23, 0, 0});
    EXPECT_EQ(takeEnds(), Lines{"failed: the module is not the primary controller"});
}

TEST_F(ControllerMembership, FailsWithAModuleThatRestartsMeanwhile) {
    begin<Inclusion>();
    hears(add, {1, 1, 0, 0});
    hears(0x0A, {3, 0, 1, 2, 1, 0});
    EXPECT_EQ(takeEnds(), Lines{"failed: the module has restarted"});
    EXPECT_EQ(controller.state(), ModuleState::ready);
}

TEST_F(ControllerMembership, RefusesAnotherJobOfTheNetworkMeanwhile) {
    begin<Inclusion>();
    auto const other = submit(std::make_shared<Exclusion>(Milliseconds(0)));
    EXPECT_EQ(other.refusal, Refusal::busy);
    EXPECT_EQ(other.reason, "inclusion is running");
    ASSERT_NE(controller.networkJob(), nullptr);
    EXPECT_EQ(controller.networkJob()->number(), submission.job);
}

TEST_F(ControllerMembership, LetsFramesOutWhileNoNodeIsFound) {
    begin<Inclusion>();
    module.takeHeard();
    submit(makePing(5, Milliseconds(0)));
    EXPECT_EQ(module.takeHeard(), Lines{});
    hears(add, {1, 1, 0, 0});
    EXPECT_EQ(module.takeHeard(), Lines{"13 05 01 00 25 02"});
    hears(0x13, {2, 0});
    hears(add, {1, 2, 0, 0});
    submit(makePing(5, Milliseconds(0)));
    EXPECT_EQ(module.takeHeard(), Lines{});
}

TEST_F(ControllerMembership, BeginsWhenTheFrameThatIsUnderWayIsThrough) {
    module.answers<serialapi::SendData>({1});
    submit(makePing(5, Milliseconds(0)));
    module.takeHeard();
    begin<Inclusion>();
    EXPECT_EQ(module.takeHeard(), Lines{});
    hears(0x13, {1, 0});
    EXPECT_EQ(module.takeHeard(), Lines{"4a c1 02"});
}

TEST_F(ControllerMembership, TakesANodeOut) {
    auto const job = begin<Exclusion>();
    EXPECT_EQ(module.takeHeard(), Lines{"4b c1 01"});
    hears(remove, {1, 1, 0, 0});
    hears(remove, {1, 2, 0, 0});
    hears(remove, {1, 3, 5, 3, 4, 0x10, 1});
    hears(remove, {1, 6, 5, 0});
    EXPECT_EQ(module.takeHeard(), Lines{"4b 05 00"});
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(job->node(), 5);
    EXPECT_EQ(diary.take(), Lines{"removed c0ffee01:5"});
}

TEST_F(ControllerMembership, TakesANodeOutOfAnotherNetwork) {
    auto const job = begin<Exclusion>();
    hears(remove, {1, 1, 0, 0});
    hears(remove, {1, 2, 0, 0});
    hears(remove, {1, 6, 0, 0});
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(job->node(), 0);
    EXPECT_EQ(diary.take(), Lines{});
}

TEST_F(ControllerMembership, StopsAnExclusionThatIsCancelled) {
    begin<Exclusion>();
    hears(remove, {1, 1, 0, 0});
    module.takeHeard();
    cancel();
    EXPECT_EQ(module.takeHeard(), Lines{"4b 05 01"});
    hears(remove, {1, 6, 0, 0});
    EXPECT_EQ(module.takeHeard(), Lines{"4b 05 00"});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
}

TEST_F(ControllerMembership, GivesUpAnExclusionThatDoesNotFinishWithItsNode) {
    begin<Exclusion>();
    hears(remove, {1, 1, 0, 0});
    hears(remove, {1, 2, 0, 0});
    hears(remove, {1, 3, 5, 3, 4, 0x10, 1});
    passes(Milliseconds(14'000));
    hears(remove, {1, 6, 0, 0});
    EXPECT_EQ(takeEnds(), Lines{"failed: the node was found, but not finished with"});
    EXPECT_NE(controller.network().nodes.find(5), nullptr);
}

TEST_F(ControllerMembership, EndsAsItWasToldToAtFirst) {
    auto const accepted = submit(std::make_shared<Inclusion>(Milliseconds(1000)));
    hears(add, {1, 1, 0, 0});
    hears(add, {1, 2, 0, 0});
    controller.cancel(accepted.job, now);
    passes(Milliseconds(2000)); // its deadline is over, too
    hasNodes({1, 5, 8, 9});
    hears(add, {1, 3, 9, 3, 4, 0x10, 1});
    hears(add, {1, 5, 9, 0});
    hears(add, {1, 6, 9, 0});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
}

/// Its module knows how to hand the network over.
struct ControllerOfPrimary : testing::Test, ControllerStage {
    static constexpr Byte shift = 0x4D;
    ControllerOfPrimary() : ControllerStage(false, false, shift) { open(); }
};

TEST_F(ControllerOfPrimary, MakesTheControllerThatComesThePrimaryOneAndIsReadAgain) {
    auto const job = std::make_shared<ControllerShift>(Milliseconds(0));
    submit(job);
    EXPECT_EQ(module.takeHeard(), Lines{"4d 02 01"});
    hears(shift, {1, 1, 0, 0});
    hears(shift, {1, 2, 0, 0});
    hasNodes({1, 5, 8, 9});
    module.answers<serialapi::GetControllerCapabilities>({0x05}); // secondary now
    hears(shift, {1, 4, 9, 3, 2, 0x02, 1});
    hears(shift, {1, 5, 9, 0});
    EXPECT_EQ(module.takeHeard(), Lines{"4d 05 01"});
    hears(shift, {1, 6, 9, 0});
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(job->node(), 9);
    EXPECT_EQ(controller.network().module.roles, 0x05);
    EXPECT_NE(controller.network().nodes.find(9), nullptr);
}

TEST_F(ControllerOfPrimary, StopsAChangeThatIsCancelled) {
    auto const submission = submit(std::make_shared<ControllerShift>(Milliseconds(0)));
    hears(shift, {1, 1, 0, 0});
    module.takeHeard();
    controller.cancel(submission.job, now);
    play();
    EXPECT_EQ(module.takeHeard(), Lines{"4d 05 01"});
    hears(shift, {1, 6, 0, 0});
    EXPECT_EQ(module.takeHeard(), Lines{"4d 05 00"});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
}

TEST_F(ControllerMembership, RefusesAChangeThatTheModuleDoesNotKnow) {
    EXPECT_EQ(submit(std::make_shared<ControllerShift>(Milliseconds(0))).reason, "the module does not know how");
}

} // namespace

} // namespace zorv::controller
