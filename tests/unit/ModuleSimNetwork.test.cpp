// SPDX-License-Identifier: Apache-2.0
#include "tests/unit/ModuleSim.h"

namespace zorv::modulesim {

namespace {

using Add = api::AddNodeToNetwork;
using Shift = api::ControllerChange;
using Remove = api::RemoveNodeFromNetwork;

constexpr Byte start = api::mode::any | api::mode::networkWide | api::mode::normalPower;

struct ModuleSimNetwork : testing::Test {
    HeardLink link{smallNetwork(Generation::series700)};

    /// Begins a mode under callback id 9 and notes each callback that comes.
    template <class F> void begin(typename F::Request const& request) {
        api::CallHandlers<F> handlers;
        handlers.callback = [this](typename F::Callback const& callback) {
            story += HeardLink::tell(callback) + ' ';
            if constexpr (std::is_same_v<typename F::Callback, api::ModeCallback>) {
                if (callback.information) { information = *callback.information; }
            }
        };
        handlers.end = [this](api::CallEnd) { story += "end"; };
        link.host.call<F>(request, std::move(handlers), link.now);
    }
    template <class F> void tell(typename F::Request const& request, Milliseconds time) {
        link.host.tell<F>(request, {}, link.now);
        link.passes(time);
    }
    void fails(NodeId node) { link.follow<api::SendData>({node, {0x00}, 0x25, 0}, Milliseconds(500)); }

    std::string story;
    api::NodeInformation information;
};

NodeDescription const sensor{0,    NodeKind::sleeping, false, Milliseconds(20), Milliseconds(0), 0, 4, 0x21,
                             0x01, {0x72, 0x84, 0x86}};

} // namespace

TEST_F(ModuleSimNetwork, TakesANodeInAndTellsEachStep) {
    link.module.join(sensor, Milliseconds(500));
    begin<Add>({start, Byte{9}, {}});
    link.passes(Milliseconds(20));
    EXPECT_EQ(story, "1:0 ");
    EXPECT_TRUE(link.module.isInMode());
    link.passes(Milliseconds(500));
    EXPECT_EQ(story, "1:0 2:0 ");
    link.passes(Milliseconds(150));
    EXPECT_EQ(story, "1:0 2:0 3:6 ");
    EXPECT_EQ(information.generic, 0x21);
    EXPECT_EQ(information.commandClasses, (Bytes{0x72, 0x84, 0x86}));
    link.passes(Milliseconds(1000));
    EXPECT_EQ(story, "1:0 2:0 3:6 5:6 ");
    tell<Add>({api::mode::stop, Byte{9}, {}}, Milliseconds(30));
    EXPECT_EQ(story, "1:0 2:0 3:6 5:6 6:6 end");
    EXPECT_EQ(link.module.nodes(), (Ids{1, 2, 3, 4, 5, 6}));
    EXPECT_FALSE(link.module.isInMode());
    // Awake for its interview.
    EXPECT_EQ(link.follow<api::SendData>({6, {0x72, 0x04}, 0x25, 0}, Milliseconds(500)), "0 done");
}

TEST_F(ModuleSimNetwork, TellsThatAControllerComesIn) {
    auto controller = sensor;
    controller.basic = 2;
    link.module.join(controller, Milliseconds(0));
    begin<Add>({start, Byte{9}, {}});
    link.passes(Milliseconds(500));
    EXPECT_EQ(story, "1:0 2:0 4:6 ");
}

TEST_F(ModuleSimNetwork, HandsTheNetworkOverToAControllerThatComes) {
    auto controller = sensor;
    controller.kind = NodeKind::listening;
    controller.basic = 2;
    link.module.join(controller, Milliseconds(0));
    begin<Shift>({api::mode::controllerOnly, Byte{9}});
    link.passes(Milliseconds(100));
    EXPECT_TRUE(link.module.isInMode());
    link.passes(Milliseconds(2000));
    EXPECT_EQ(story, "1:0 2:0 4:6 5:6 ");
    tell<Shift>({api::mode::stop, Byte{9}}, Milliseconds(100));
    EXPECT_EQ(story, "1:0 2:0 4:6 5:6 6:6 end");
    EXPECT_FALSE(link.module.isInMode());
    EXPECT_EQ(link.ask<api::GetControllerCapabilities>()->capabilities & 0x1BU, 0x03U); // secondary, and no updater
    EXPECT_EQ(link.ask<api::GetSucNodeId>()->node, 6);
    EXPECT_EQ(link.follow<Add>({start, 0, {}}, Milliseconds(100)), "35:0 done"); // not primary any more
    EXPECT_EQ(link.follow<Shift>({api::mode::controllerOnly, 0}, Milliseconds(100)), "35:0 done");
}

TEST_F(ModuleSimNetwork, HandsTheNetworkOverToNothingButAController) {
    link.module.join(sensor, Milliseconds(0));
    begin<Shift>({api::mode::controllerOnly, Byte{9}});
    link.passes(Milliseconds(5000));
    EXPECT_EQ(story, "1:0 ");
    EXPECT_EQ(link.follow<Add>({start, 0, {}}, Milliseconds(100)), "7:0 done"); // one mode at a time
    tell<Shift>({api::mode::stop, Byte{9}}, Milliseconds(100));
    EXPECT_EQ(story, "1:0 6:0 end");
    EXPECT_EQ(link.ask<api::GetControllerCapabilities>()->capabilities & 0x01U, 0U);
    EXPECT_EQ(link.follow<Shift>({api::mode::any, 0}, Milliseconds(100)), "7:0 done"); // no mode of this function
}

TEST_F(ModuleSimNetwork, WaitsForANodeUntilItIsToldToStop) {
    begin<Add>({start, Byte{9}, {}});
    link.passes(Milliseconds(60000));
    EXPECT_EQ(story, "1:0 ");
    tell<Add>({api::mode::stop, Byte{9}, {}}, Milliseconds(100));
    EXPECT_EQ(story, "1:0 6:0 end");
    EXPECT_FALSE(link.module.isInMode());
}

TEST_F(ModuleSimNetwork, TellsAStopWithoutACallbackIdUnderThatOfTheStart) {
    begin<Add>({start, Byte{9}, {}});
    link.passes(Milliseconds(100));
    tell<Add>({api::mode::stop, {}, {}}, Milliseconds(100));
    EXPECT_EQ(story, "1:0 6:0 end");
}

TEST_F(ModuleSimNetwork, IsSilentAtAStopWithCallbackIdZero) {
    begin<Add>({start, Byte{9}, {}});
    link.passes(Milliseconds(100));
    tell<Add>({api::mode::stop, Byte{0}, {}}, Milliseconds(1000));
    EXPECT_EQ(story, "1:0 ");
    EXPECT_FALSE(link.module.isInMode());
}

TEST_F(ModuleSimNetwork, CannotBeAbortedByAnotherCallOnceANodeIsFound) {
    link.module.join(sensor, Milliseconds(0));
    begin<Add>({start, Byte{9}, {}});
    link.passes(Milliseconds(100));
    EXPECT_EQ(story, "1:0 2:0 ");
    tell<Remove>({start, Byte{8}}, Milliseconds(10));
    tell<Add>({start, Byte{7}, {}}, Milliseconds(2000));
    EXPECT_EQ(story, "1:0 2:0 3:6 5:6 ");
}

TEST_F(ModuleSimNetwork, RefusesToTakeNodesInWhereAnotherControllerDoes) {
    auto network = smallNetwork(Generation::series500);
    network.secondaryTo = 2;
    HeardLink secondary(network);
    EXPECT_EQ(secondary.follow<Add>({start, Byte{9}, {}}, Milliseconds(100)), "35:0 done");
    EXPECT_EQ(secondary.follow<Remove>({start, Byte{9}}, Milliseconds(100)), "35:0 done");
}

TEST_F(ModuleSimNetwork, LetsANodeGoAndTakesItInAgain) {
    link.module.leave(2, Milliseconds(300));
    begin<Remove>({start, Byte{9}});
    link.passes(Milliseconds(20));
    EXPECT_EQ(story, "1:0 ");
    link.passes(Milliseconds(1000));
    EXPECT_EQ(story, "1:0 2:0 3:2 6:2 end");
    EXPECT_EQ(link.module.nodes(), (Ids{1, 3, 4, 5}));
    EXPECT_FALSE(link.module.isInMode());
    EXPECT_EQ(link.follow<api::SendData>({2, {0x00}, 0x25, 0}, Milliseconds(500)), "1 done");
    story.clear();
    begin<Add>({start, Byte{9}, {}});
    link.passes(Milliseconds(3000));
    EXPECT_EQ(story, "1:0 2:0 3:2 5:2 ");
}

TEST_F(ModuleSimNetwork, LetsANodeOfAnotherNetworkGoAsNodeZero) {
    link.module.leave(0, Milliseconds(0));
    begin<Remove>({start, Byte{9}});
    link.passes(Milliseconds(1000));
    EXPECT_EQ(story, "1:0 2:0 3:0 6:0 end");
    EXPECT_EQ(link.module.nodes(), (Ids{1, 2, 3, 4, 5}));
}

TEST_F(ModuleSimNetwork, CannotBeToldAnewToLetNodesGoOnceOneIsFound) {
    link.module.leave(2, Milliseconds(0));
    begin<Remove>({start, Byte{9}});
    link.passes(Milliseconds(100));
    EXPECT_EQ(story, "1:0 2:0 ");
    tell<Remove>({start, Byte{8}}, Milliseconds(1000));
    EXPECT_EQ(story, "1:0 2:0 3:2 6:2 end");
}

TEST_F(ModuleSimNetwork, StopsLettingNodesGo) {
    begin<Remove>({start, Byte{9}});
    link.passes(Milliseconds(100));
    tell<Remove>({api::mode::stop, Byte{9}}, Milliseconds(100));
    EXPECT_EQ(story, "1:0 6:0 end");
    EXPECT_FALSE(link.module.isInMode());
    link.module.leave(2, Milliseconds(0));
    link.passes(Milliseconds(1000));
    EXPECT_EQ(link.module.nodes(), (Ids{1, 2, 3, 4, 5}));
}

TEST_F(ModuleSimNetwork, ListsANodeAsFailedWhenItDoesNotAcknowledgeUntilItDoes) {
    EXPECT_EQ(link.ask<api::IsFailedNode>({4})->value, 0);
    fails(4);
    EXPECT_EQ(link.ask<api::IsFailedNode>({4})->value, 1);
    link.module.wake(4);
    link.passes(Milliseconds(0));
    fails(4);
    EXPECT_EQ(link.ask<api::IsFailedNode>({4})->value, 0);
}

TEST_F(ModuleSimNetwork, RemembersTheFiveNodesThatHaveFailedLast) {
    SimulatedNetwork network;
    network.nodes.resize(6);
    for (std::size_t i = 0; i < network.nodes.size(); ++i) {
        network.nodes[i].id = static_cast<NodeId>(i + 2);
        network.nodes[i].dead = true;
    }
    HeardLink dead(network);
    for (NodeId node = 2; node <= 7; ++node) { dead.follow<api::SendData>({node, {0x00}, 0x25, 0}, Milliseconds(500)); }
    EXPECT_EQ(dead.ask<api::IsFailedNode>({2})->value, 0);
    for (NodeId node = 3; node <= 7; ++node) { EXPECT_EQ(dead.ask<api::IsFailedNode>({node})->value, 1) << int{node}; }
}

TEST_F(ModuleSimNetwork, RemovesANodeThatFailsOnceMore) {
    fails(5);
    EXPECT_EQ(link.follow<api::RemoveFailedNode>({5, 0}, Milliseconds(500)), "1 done");
    EXPECT_EQ(link.module.nodes(), (Ids{1, 2, 3, 4}));
    EXPECT_EQ(link.ask<api::IsFailedNode>({5})->value, 0);
    EXPECT_FALSE(link.module.isInMode());
}

TEST_F(ModuleSimNetwork, KeepsAFailedNodeThatWorksAgain) {
    fails(4);
    link.module.wake(4);
    EXPECT_EQ(link.follow<api::RemoveFailedNode>({4, 0}, Milliseconds(500)), "0 done");
    EXPECT_EQ(link.module.nodes(), (Ids{1, 2, 3, 4, 5}));
    EXPECT_EQ(link.ask<api::IsFailedNode>({4})->value, 0);
}

TEST_F(ModuleSimNetwork, SaysWhyItDoesNotRemoveANode) {
    EXPECT_EQ(link.ask<api::RemoveFailedNode>({5, 0})->refusal, 0x08); // has not failed
    fails(5);
    begin<Add>({start, Byte{9}, {}});
    EXPECT_EQ(link.ask<api::RemoveFailedNode>({5, 0})->refusal, 0x10); // busy
    std::optional<Byte> refusal;
    api::CallHandlers<api::RemoveFailedNode> handlers;
    handlers.response = [&refusal](api::FailedNodeStart const& response) { refusal = response.refusal; };
    link.host.tell<api::RemoveFailedNode>({5, 0}, handlers, link.now);
    link.passes(Milliseconds(0));
    EXPECT_EQ(refusal, Byte{0x04}); // no callback
}

TEST_F(ModuleSimNetwork, ReplacesAFailedNode) {
    fails(5);
    begin<api::ReplaceFailedNode>({5, 0});
    link.passes(Milliseconds(1000));
    EXPECT_EQ(story, "3 ");
    link.module.join(sensor, Milliseconds(100));
    link.passes(Milliseconds(1000));
    EXPECT_EQ(story, "3 4 end");
    EXPECT_EQ(link.module.nodes(), (Ids{1, 2, 3, 4, 5}));
    EXPECT_EQ(link.ask<api::GetNodeProtocolInfo>({5})->generic, 0x21);
    EXPECT_FALSE(link.module.isInMode());
}

TEST_F(ModuleSimNetwork, EndsAReplacementAtTheStopOfAnInclusion) {
    fails(5);
    begin<api::ReplaceFailedNode>({5, 0});
    link.passes(Milliseconds(1000));
    EXPECT_EQ(link.follow<Add>({api::mode::stop, Byte{9}, {}}, Milliseconds(100)), "6:5 done");
    EXPECT_FALSE(link.module.isInMode());
    link.module.join(sensor, Milliseconds(0));
    link.passes(Milliseconds(1000));
    EXPECT_EQ(story, "3 ");
}

TEST_F(ModuleSimNetwork, JoinsAnotherNetworkAndLeavesItAgain) {
    SimulatedNetwork network;
    network.otherNetwork = OtherNetwork{0xD00DFEED, 7, Milliseconds(200)};
    HeardLink empty(network);
    EXPECT_EQ(empty.follow<api::SetLearnMode>({0x01, {}}, Milliseconds(2000)), "1:0 6:7 done");
    EXPECT_EQ(empty.module.homeId(), 0xD00DFEEDU);
    EXPECT_EQ(empty.module.node(), 7);
    EXPECT_EQ(empty.module.nodes(), (Ids{1, 7}));
    EXPECT_EQ(empty.ask<api::GetControllerCapabilities>()->capabilities & 0x03, 0x03);
    EXPECT_EQ(empty.follow<api::SetLearnMode>({0x03, {}}, Milliseconds(2000)), "6:1 done");
    EXPECT_EQ(empty.module.nodes(), Ids{1});
    EXPECT_EQ(empty.ask<api::GetControllerCapabilities>()->capabilities & 0x03, 0);
}

TEST_F(ModuleSimNetwork, DoesNotLearnWhileItTakesNodesIn) {
    begin<Add>({start, Byte{9}, {}});
    link.passes(Milliseconds(100));
    EXPECT_EQ(link.ask<api::SetLearnMode>({1, Byte{5}})->accepted, 0);
    EXPECT_EQ(story, "1:0 ");
}

TEST_F(ModuleSimNetwork, StaysInLearnModeUntilItIsToldToStop) {
    EXPECT_EQ(link.ask<api::SetLearnMode>({0x01, {}})->accepted, 1);
    EXPECT_TRUE(link.module.isInMode());
    EXPECT_EQ(link.ask<api::SetLearnMode>({0x01, {}})->accepted, 0);
    EXPECT_EQ(link.ask<api::SetLearnMode>({0x80, {}})->accepted, 0);
    EXPECT_FALSE(link.module.isInMode());
    link.ask<api::SetLearnMode>({0x02, {}});
    EXPECT_EQ(link.follow<api::SetLearnMode>({0x00, Byte{9}}, Milliseconds(100)), "7:0 done");
    EXPECT_FALSE(link.module.isInMode());
}

TEST_F(ModuleSimNetwork, SearchesTheNeighboursOfANodeThatHears) {
    using Search = api::RequestNodeNeighborUpdate;
    EXPECT_EQ(link.follow<Search>({2, 0}, Milliseconds(59)), "end 7"); // is given up by the host, not by the module
    link.passes(Milliseconds(5000));
    EXPECT_EQ(link.follow<Search>({2, 0}, Milliseconds(5000)), "33 34 done");
    EXPECT_EQ(link.follow<Search>({4, 0}, Milliseconds(5000)), "33 35 done");
    link.follow<Search>({2, 0}, Milliseconds(100));
    EXPECT_EQ(link.follow<Search>({3, 0}, Milliseconds(100)), "35 done"); // one at a time
}

TEST_F(ModuleSimNetwork, KnowsNeighboursFromItsDescription) {
    auto network = smallNetwork(Generation::series500);
    network.nodes[0].neighbours = {1, 3, 77};
    HeardLink described(network);
    EXPECT_EQ(described.ask<api::GetRoutingInfo>({2, 0, 0, Byte{0}})->neighbours.numbers(), (Ids{1, 3}));
    EXPECT_EQ(described.ask<api::GetRoutingInfo>({3, 0, 0, Byte{0}})->neighbours.numbers(), (Ids{1, 2, 5}));
    EXPECT_EQ(described.ask<api::GetRoutingInfo>({99, 0, 0, {}})->neighbours.bytes, Bytes(29));
    EXPECT_EQ(described.ask<api::GetNeighborCount>({2})->value, 2);
    EXPECT_EQ(described.ask<api::AreNodesNeighbors>({2, 3})->value, 1);
    EXPECT_EQ(described.ask<api::AreNodesNeighbors>({2, 4})->value, 0);
}

TEST_F(ModuleSimNetwork, AsksTheUpdateControllerForChangesUnlessItIsThat) {
    EXPECT_EQ(link.ask<api::RequestNetworkUpdate>()->accepted, 0);
    auto network = smallNetwork(Generation::series500);
    network.secondaryTo = 2;
    HeardLink secondary(network);
    EXPECT_EQ(secondary.follow<api::RequestNetworkUpdate>({}, Milliseconds(1000)), "0 done");
}

TEST_F(ModuleSimNetwork, TellsTheNewUpdateControllerByGeneration) {
    EXPECT_EQ(link.follow<api::SetSucNodeId>({1, 1, 0, 1, 0}, Milliseconds(1000)), "5 done");
    HeardLink old(smallNetwork(Generation::series500));
    EXPECT_EQ(old.follow<api::SetSucNodeId>({1, 1, 0, 1, 0}, Milliseconds(1000)), "end 7");
    EXPECT_EQ(old.follow<api::SetSucNodeId>({2, 1, 0, 1, 0}, Milliseconds(1000)), "5 done");
    EXPECT_EQ(old.ask<api::GetSucNodeId>()->node, 2);
    EXPECT_EQ(old.ask<api::SetSucNodeId>({99, 1, 0, 1, 0})->accepted, 0);
}

TEST_F(ModuleSimNetwork, GivesUpItsModeWhenItRestartsOrForgetsItsNetwork) {
    begin<Add>({start, Byte{9}, {}});
    link.passes(Milliseconds(100));
    link.module.restart();
    link.passes(Milliseconds(1000));
    EXPECT_FALSE(link.module.isInMode());
    link.module.join(sensor, Milliseconds(0));
    link.passes(Milliseconds(1000));
    EXPECT_EQ(story, "1:0 ");
}

} // namespace zorv::modulesim
