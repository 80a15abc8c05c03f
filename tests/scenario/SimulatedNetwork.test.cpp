// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/SimulatedNetwork.h"

#include "apps/zwaved/readNetwork.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

namespace {

using namespace zorv;
using std::chrono::milliseconds;

constexpr HomeId home = 0xC0FFEE01;

NetworkDescription describe(NodeDescription const& node) {
    NetworkDescription network;
    network.homeId = home;
    network.controller = 1;
    network.retransmitMs = 250;
    network.nodes = {node};
    return network;
}

void expectOutcome(SimulatedNetwork::Outcome const& outcome, ZResult::Enum result, int delayMs) {
    EXPECT_EQ(outcome.result, result);
    EXPECT_EQ(outcome.delay, milliseconds(delayMs));
}

/// The delays of the next 100 frames, -1 for lost ones.
std::vector<long> delays(SimulatedNetwork& network, unsigned char node) {
    std::vector<long> all;
    for (int i = 0; i < 100; ++i) {
        auto const outcome = network.reach({home, node});
        all.push_back(outcome.result == ZResult::success ? static_cast<long>(outcome.delay.count()) : -1);
    }
    return all;
}

TEST(SimulatedNetwork, AwakeNodeAnswersAfterItsLatency) {
    SimulatedNetwork network(describe({5, NodeState::awake, 40, 0, 0}));
    expectOutcome(network.reach({home, 5}), ZResult::success, 40);
}

TEST(SimulatedNetwork, ControllerAnswersAtOnce) {
    SimulatedNetwork network(describe({5, NodeState::awake, 40, 0, 0}));
    expectOutcome(network.reach({home, 1}), ZResult::success, 0);
}

TEST(SimulatedNetwork, HomeIdZeroStandsForThisNetwork) {
    SimulatedNetwork network(describe({5, NodeState::awake, 40, 0, 0}));
    expectOutcome(network.reach({0, 5}), ZResult::success, 40);
    expectOutcome(network.reach({0, 1}), ZResult::success, 0);
}

TEST(SimulatedNetwork, UnknownNodeAndOtherNetworkAreNotFound) {
    SimulatedNetwork network(describe({5, NodeState::awake, 40, 0, 0}));
    expectOutcome(network.reach({home, 6}), ZResult::nodeNotFound, 0);
    expectOutcome(network.reach({home, 0}), ZResult::nodeNotFound, 0);
    expectOutcome(network.reach({home, 255}), ZResult::nodeNotFound, 0);
    expectOutcome(network.reach({0xC0FFEE02, 5}), ZResult::nodeNotFound, 0);
    expectOutcome(network.reach({0xC0FFEE02, 1}), ZResult::nodeNotFound, 0);
}

TEST(SimulatedNetwork, DeadNodeIsNotReachedAfterTheRetransmissions) {
    SimulatedNetwork network(describe({5, NodeState::dead, 40, 0, 0}));
    expectOutcome(network.reach({home, 5}), ZResult::nodeNotReached, 250);
}

TEST(SimulatedNetwork, SleepingNodeIsReportedAtOnce) {
    SimulatedNetwork network(describe({5, NodeState::sleeping, 40, 0, 0}));
    expectOutcome(network.reach({home, 5}), ZResult::nodeAsleep, 0);
}

TEST(SimulatedNetwork, LossOfOneLosesEveryFrame) {
    SimulatedNetwork network(describe({5, NodeState::awake, 40, 0, 1}));
    for (auto const delay : delays(network, 5)) { EXPECT_EQ(delay, -1); }
    expectOutcome(network.reach({home, 5}), ZResult::nodeNotReached, 250);
}

TEST(SimulatedNetwork, LossOfAHalfLosesAboutHalf) {
    SimulatedNetwork network(describe({5, NodeState::awake, 40, 0, 0.5}));
    int lost = 0;
    for (auto const delay : delays(network, 5)) { lost += delay < 0 ? 1 : 0; }
    EXPECT_GT(lost, 25);
    EXPECT_LT(lost, 75);
}

TEST(SimulatedNetwork, JitterStaysWithinItsBoundsAndVaries) {
    SimulatedNetwork network(describe({5, NodeState::awake, 40, 3, 0}));
    std::vector<int> seen(7);
    for (auto const delay : delays(network, 5)) {
        ASSERT_GE(delay, 37);
        ASSERT_LE(delay, 43);
        ++seen[static_cast<std::size_t>(delay - 37)];
    }
    for (auto const count : seen) { EXPECT_GT(count, 0); }
}

TEST(SimulatedNetwork, SameSeedGivesTheSameOutcomesWhateverOtherNodesAreAsked) {
    auto description = describe({5, NodeState::awake, 40, 20, 0.3});
    description.nodes.push_back({6, NodeState::awake, 40, 20, 0.3});
    SimulatedNetwork first(description);
    SimulatedNetwork second(description);
    delays(second, 6);
    EXPECT_EQ(delays(second, 5), delays(first, 5));
}

TEST(SimulatedNetwork, OtherSeedOrOtherNodeGivesOtherOutcomes) {
    auto description = describe({5, NodeState::awake, 40, 20, 0.3});
    description.nodes.push_back({6, NodeState::awake, 40, 20, 0.3});
    SimulatedNetwork first(description);
    description.seed = 2;
    SimulatedNetwork second(description);
    auto const outcomes = delays(first, 5);
    EXPECT_NE(delays(first, 6), outcomes);
    EXPECT_NE(delays(second, 5), outcomes);
}

TEST(SimulatedNetwork, BuiltInNetworkHasNodesOfEveryKind) {
    SimulatedNetwork network(builtInNetwork());
    EXPECT_EQ(network.reach({home, 5}).result, ZResult::success);
    EXPECT_EQ(network.reach({home, 6}).result, ZResult::success);
    EXPECT_EQ(network.reach({home, 8}).result, ZResult::nodeAsleep);
    EXPECT_EQ(network.reach({home, 9}).result, ZResult::nodeNotReached);
    EXPECT_EQ(network.reach({home, 4}).result, ZResult::nodeNotFound);
}

} // namespace
