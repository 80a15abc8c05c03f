// SPDX-License-Identifier: Apache-2.0
#include "tests/unit/ModuleSim.h"
#include "zwave/libserialapi/commands/Commands.h"

namespace zorv::modulesim {

namespace commands = serialapi::commands;

namespace {

struct ModuleSimNodes : testing::Test {
    HeardLink old{smallNetwork(Generation::series500)};
    HeardLink recent{smallNetwork(Generation::series700)};

    /// How a send ends, and what comes back within a second.
    std::string sends(NodeId node, Bytes const& data) {
        old.heard.clear();
        auto story = old.follow<api::SendData>({node, data, 0x25, 0}, Milliseconds(2000));
        for (auto const& frame : old.heard) { story += "; " + frame; }
        return story;
    }
};

} // namespace

TEST_F(ModuleSimNodes, AcknowledgeWhenTheyListen) {
    EXPECT_EQ(old.follow<api::SendData>({2, {0x00}, 0x25, 0}, Milliseconds(19)), "end 7");  // given up by the host
    EXPECT_EQ(old.follow<api::SendData>({3, {0x00}, 0x25, 0}, Milliseconds(500)), "end 1"); // the first is on its way
    EXPECT_EQ(old.follow<api::SendData>({2, {0x00}, 0x25, 0}, Milliseconds(20)), "0 done");
    EXPECT_EQ(old.follow<api::SendData>({3, {0x00}, 0x25, 0}, Milliseconds(1019)), "end 7");
    old.passes(Milliseconds(1));
    EXPECT_EQ(old.host.strayCallbacks(), 2U);
}

TEST_F(ModuleSimNodes, DoNotAcknowledgeWhenTheySleepAreDeadOrNotThere) {
    EXPECT_EQ(old.follow<api::SendData>({4, {0x00}, 0x25, 0}, Milliseconds(300)), "1 done");
    EXPECT_EQ(old.follow<api::SendData>({5, {0x00}, 0x25, 0}, Milliseconds(300)), "1 done");
    EXPECT_EQ(old.follow<api::SendData>({99, {0x00}, 0x25, 0}, Milliseconds(300)), "1 done");
}

TEST_F(ModuleSimNodes, LoseTheShareOfFramesThatTheirDescriptionSays) {
    auto network = smallNetwork(Generation::series500);
    network.nodes[0].loss = 0.25;
    HeardLink link(network);
    int lost = 0;
    for (int i = 0; i < 400; ++i) {
        lost += link.follow<api::SendData>({2, {0x00}, 0x25, 0}, Milliseconds(400)) == "1 done" ? 1 : 0;
    }
    EXPECT_GT(lost, 70);
    EXPECT_LT(lost, 130);
}

TEST_F(ModuleSimNodes, AreToldOfInAReportThatTheGenerationDecides) {
    api::Bytes parameters;
    auto const report = [&parameters](HeardLink& link) {
        link.module.trace([&parameters](api::Side, api::Frame const& frame) { parameters = frame.parameters; });
        link.host.call<api::SendData>({2, {0x00}, 0x25, 0x77}, {}, link.now);
        link.passes(Milliseconds(100));
        return text(parameters);
    };
    EXPECT_EQ(report(old), "77 00 00 02");
    EXPECT_EQ(report(recent), "77 00 00 02 00 b1 7f 7f 7f 7f 00 00 01 00 00 00 00 03 01 00 00 7f 7f 7f 7f 7f");
    api::SerialApiSetup::Request quiet;
    quiet.command = api::SerialApiSetup::setTxStatusReport;
    recent.ask<api::SerialApiSetup>(quiet);
    EXPECT_EQ(report(recent), "77 00");
}

TEST_F(ModuleSimNodes, AreReachedTogether) {
    EXPECT_EQ(old.follow<api::SendDataMulti>({{2, 3}, {0x20, 0x01, 0xFF}, 0x25, 0}, Milliseconds(2000)), "0 done");
    EXPECT_EQ(old.follow<api::SendDataMulti>({{2, 5}, {0x20, 0x01, 0xFF}, 0x25, 0}, Milliseconds(2000)), "1 done");
    EXPECT_EQ(sends(2, {0x20, 0x02}), "0 done; 04 00 02 03 20 03 ff");
    EXPECT_EQ(old.follow<api::SendDataMulti>({{}, {0x00}, 0x25, 0}, Milliseconds(100)), "end 1");
    EXPECT_EQ(old.follow<api::SendDataMulti>({{2, 3}, Bytes(26), 0x25, 0}, Milliseconds(100)), "end 1");
    EXPECT_EQ(old.follow<api::SendData>({2, Bytes(47), 0x25, 0}, Milliseconds(100)), "end 1");
    EXPECT_EQ(old.follow<api::SendData>({2, {}, 0x25, 0}, Milliseconds(100)), "end 1");
}

TEST_F(ModuleSimNodes, HearABroadcast) {
    EXPECT_EQ(old.follow<api::SendData>({255, {0x20, 0x01, 0xFF}, 0x20, 0}, Milliseconds(100)), "0 done");
    EXPECT_EQ(sends(2, {0x20, 0x02}), "0 done; 04 00 02 03 20 03 ff");
    EXPECT_EQ(sends(3, {0x25, 0x02}), "0 done; 04 00 03 03 25 03 ff");
}

TEST_F(ModuleSimNodes, AreNotAwaitedAnyMoreAfterAnAbort) {
    std::string story;
    api::CallHandlers<api::SendData> handlers;
    handlers.callback = [&story](auto const& callback) { story += std::to_string(callback.status); };
    old.host.call<api::SendData>({5, {0x00}, 0x25, 0}, handlers, old.now);
    old.passes(Milliseconds(100));
    old.host.call<api::SendDataAbort>({}, {}, old.now);
    old.passes(Milliseconds(0));
    EXPECT_EQ(story, "1");
    EXPECT_EQ(old.follow<api::SendData>({2, {0x00}, 0x25, 0}, Milliseconds(20)), "0 done");
}

TEST_F(ModuleSimNodes, AnswerWhatAnInterviewAsks) {
    EXPECT_EQ(sends(2, {0x72, 0x04}), "0 done; 04 00 02 08 72 05 02 3f 00 01 00 01");
    EXPECT_EQ(sends(2, {0x86, 0x11}), "0 done; 04 00 02 07 86 12 03 04 05 01 00");
    EXPECT_EQ(sends(2, {0x86, 0x13, 0x25}), "0 done; 04 00 02 04 86 14 25 01");
    EXPECT_EQ(sends(2, {0x86, 0x13, 0x80}), "0 done; 04 00 02 04 86 14 80 00");
    EXPECT_EQ(sends(2, {0x85, 0x05}), "0 done; 04 00 02 03 85 06 01");
}

TEST_F(ModuleSimNodes, SwitchAndTell) {
    EXPECT_EQ(sends(2, {0x25, 0x02}), "0 done; 04 00 02 03 25 03 00");
    EXPECT_EQ(sends(2, {0x25, 0x01, 0x63}), "0 done");
    EXPECT_EQ(sends(2, {0x25, 0x02}), "0 done; 04 00 02 03 25 03 ff");
    EXPECT_EQ(sends(2, {0x20, 0x02}), "0 done; 04 00 02 03 20 03 ff");
    EXPECT_EQ(sends(2, {0x80, 0x02}), "0 done"); // has no battery
}

TEST_F(ModuleSimNodes, KeepTheirAssociations) {
    EXPECT_EQ(sends(2, {0x85, 0x01, 0x01, 0x01, 0x03}), "0 done");
    EXPECT_EQ(sends(2, {0x85, 0x01, 0x01, 0x03}), "0 done"); // is one of them already
    EXPECT_EQ(sends(2, {0x85, 0x02, 0x01}), "0 done; 04 00 02 07 85 03 01 05 00 01 03");
    EXPECT_EQ(sends(2, {0x85, 0x04, 0x01, 0x01}), "0 done");
    EXPECT_EQ(sends(2, {0x85, 0x02, 0x01}), "0 done; 04 00 02 06 85 03 01 05 00 03");
    EXPECT_EQ(sends(2, {0x85, 0x04, 0x00}), "0 done");
    EXPECT_EQ(sends(2, {0x85, 0x02, 0x01}), "0 done; 04 00 02 05 85 03 01 05 00");
}

TEST_F(ModuleSimNodes, AreHeardInTheFormOfBridgeLibrariesWhereTheModuleIsOne) {
    recent.module.command(2, {0x20, 0x01, 0x00});
    recent.passes(Milliseconds(0));
    EXPECT_EQ(recent.heard, Texts{"a8 00 01 02 03 20 01 00 00 b1 00 7f 7f"});
}

TEST_F(ModuleSimNodes, TellWhatTheyAreWhenTheyAreAskedOrTheirButtonIsPressed) {
    EXPECT_EQ(old.ask<api::RequestNodeInfo>({2})->accepted, 1);
    old.passes(Milliseconds(100));
    EXPECT_EQ(old.heard, Texts{"49 84 02 07 04 10 01 25 72 85 86"});
    old.heard.clear();
    old.module.pressButton(2);
    old.passes(Milliseconds(0));
    EXPECT_EQ(old.heard, Texts{"49 84 02 07 04 10 01 25 72 85 86"});
}

TEST_F(ModuleSimNodes, TellNothingWhenTheySleepAndNeitherDoesTheModuleItself) {
    old.ask<api::RequestNodeInfo>({4});
    old.passes(Milliseconds(1000));
    old.ask<api::RequestNodeInfo>({1});
    old.passes(Milliseconds(1000));
    EXPECT_EQ(old.heard, (Texts{"49 81 00 00", "49 81 00 00"}));
}

TEST_F(ModuleSimNodes, WakeUpByTheirIntervalAndListenForTenSecondsAfterTheLastFrame) {
    old.passes(Milliseconds(59999));
    EXPECT_EQ(old.heard, Texts{});
    old.passes(Milliseconds(1));
    EXPECT_EQ(old.heard, Texts{"04 00 04 02 84 07"});
    old.passes(Milliseconds(9000));
    EXPECT_EQ(old.follow<api::SendData>({4, {0x00}, 0x25, 0}, Milliseconds(500)), "0 done");
    old.passes(Milliseconds(9000));
    EXPECT_EQ(old.follow<api::SendData>({4, {0x00}, 0x25, 0}, Milliseconds(500)), "0 done");
    old.passes(Milliseconds(10000));
    EXPECT_EQ(old.follow<api::SendData>({4, {0x00}, 0x25, 0}, Milliseconds(500)), "1 done");
    old.passes(Milliseconds(60000));
    EXPECT_EQ(old.heard.size(), 2U);
}

TEST_F(ModuleSimNodes, SleepOnceThereIsNothingMoreToSay) {
    old.module.wake(4);
    old.passes(Milliseconds(10));
    EXPECT_EQ(sends(4, {0x84, 0x05}), "0 done; 04 00 04 06 84 06 00 00 3c 00");
    EXPECT_EQ(sends(4, {0x80, 0x02}), "0 done; 04 00 04 03 80 03 64");
    EXPECT_EQ(sends(4, {0x84, 0x08}), "0 done");
    EXPECT_EQ(sends(4, {0x84, 0x05}), "1 done");
}

TEST_F(ModuleSimNodes, WakeUpByTheIntervalThatTheyWereTold) {
    old.module.wake(4);
    old.passes(Milliseconds(10));
    EXPECT_EQ(sends(4, {0x84, 0x04, 0x00, 0x00, 0x14, 0x01}), "0 done");
    EXPECT_EQ(sends(4, {0x84, 0x05}), "0 done; 04 00 04 06 84 06 00 00 14 01");
    old.heard.clear();
    old.passes(Milliseconds(61000));
    EXPECT_EQ(old.heard.size(), 3U); // after 20, 40 and 60 seconds, and not after the old 60 as well
}

TEST_F(ModuleSimNodes, AreNotHeardWhileTheRadioIsOff) {
    EXPECT_EQ(old.ask<api::SetRfReceiveMode>({0})->accepted, 1);
    old.module.command(2, {0x20, 0x01, 0x00});
    old.passes(Milliseconds(0));
    EXPECT_EQ(old.heard, Texts{});
    old.ask<api::SetRfReceiveMode>({1});
    old.module.command(2, {0x20, 0x01, 0x00});
    old.passes(Milliseconds(0));
    EXPECT_EQ(old.heard.size(), 1U);
}

TEST_F(ModuleSimNodes, HearTheModulesOwnNodeInformation) {
    EXPECT_EQ(old.follow<api::SendNodeInformation>({255, 0x20, 0}, Milliseconds(100)), "0 done");
    EXPECT_EQ(old.follow<api::SendNodeInformation>({5, 0x01, 0}, Milliseconds(100)), "1 done");
}

} // namespace zorv::modulesim
