// SPDX-License-Identifier: Apache-2.0
#include "tests/unit/ModuleSim.h"

namespace zorv::modulesim {

namespace {

struct ModuleSimStart : testing::Test {
    HeardLink old{smallNetwork(Generation::series500)};
    HeardLink recent{smallNetwork(Generation::series700)};
    HeardLink latest{smallNetwork(Generation::series800)};
};

} // namespace

TEST_F(ModuleSimStart, TellsItsVersionByGeneration) {
    EXPECT_EQ(old.ask<api::GetVersion>()->version, "Z-Wave 4.05");
    EXPECT_EQ(old.ask<api::GetVersion>()->libraryType, 1);
    EXPECT_EQ(recent.ask<api::GetVersion>()->version, "Z-Wave 7.18");
    EXPECT_EQ(recent.ask<api::GetVersion>()->libraryType, 7);
    EXPECT_EQ(latest.ask<api::GetVersion>()->version, "Z-Wave 7.22");
    EXPECT_EQ(recent.ask<api::TypeLibrary>()->value, 7);
}

TEST_F(ModuleSimStart, TellsTheVersionAndTheLibraryThatItsDescriptionNames) {
    auto network = smallNetwork(Generation::series500);
    network.version = "Z-Wave 6.07";
    network.libraryType = Byte{7};
    HeardLink link(network);
    EXPECT_EQ(link.ask<api::GetVersion>()->version, "Z-Wave 6.07");
    EXPECT_EQ(link.ask<api::GetVersion>()->libraryType, 7);
}

TEST_F(ModuleSimStart, TellsItsNodesAndItsChip) {
    auto const data = old.ask<api::GetInitData>();
    ASSERT_TRUE(data);
    EXPECT_EQ(data->nodes.numbers(), (Ids{1, 2, 3, 4, 5}));
    EXPECT_EQ(data->nodes.bytes.size(), 29U);
    EXPECT_EQ(data->apiVersion, 5);
    EXPECT_EQ(data->capabilities, 0x08);
    EXPECT_EQ(data->chipType, 5);
    EXPECT_EQ(recent.ask<api::GetInitData>()->chipType, 7);
    EXPECT_EQ(latest.ask<api::GetInitData>()->chipType, 8);
    EXPECT_EQ(latest.ask<api::GetInitData>()->apiVersion, 10);
}

TEST_F(ModuleSimStart, TellsWhoItIs) {
    EXPECT_EQ(recent.ask<api::MemoryGetId>()->homeId, 0xC0FFEE01U);
    EXPECT_EQ(recent.ask<api::MemoryGetId>()->node, 1);
    EXPECT_EQ(recent.ask<api::GetSucNodeId>()->node, 1);
    EXPECT_EQ(recent.ask<api::GetControllerCapabilities>()->capabilities, 0x1C);
}

TEST_F(ModuleSimStart, TellsAFreshModuleFromOneWithNodes) {
    SimulatedNetwork network;
    network.isSis = false;
    EXPECT_EQ(HeardLink(network).ask<api::GetControllerCapabilities>()->capabilities, 0x28);
    network.generation = Generation::series500;
    EXPECT_EQ(HeardLink(network).ask<api::GetControllerCapabilities>()->capabilities, 0x08);
}

TEST_F(ModuleSimStart, TellsThatItIsSecondaryInTheNetworkOfAnother) {
    auto network = smallNetwork(Generation::series500);
    network.secondaryTo = 2;
    HeardLink link(network);
    EXPECT_EQ(link.ask<api::GetControllerCapabilities>()->capabilities, 0x07);
    EXPECT_EQ(link.ask<api::GetInitData>()->capabilities, 0x04);
    EXPECT_EQ(link.ask<api::GetSucNodeId>()->node, 2);
}

TEST_F(ModuleSimStart, ListsTheFunctionsOfItsGeneration) {
    auto const has = [](HeardLink& link, int function) {
        auto const capabilities = link.ask<api::GetCapabilities>();
        EXPECT_EQ(capabilities->functions.bytes.size(), 32U);
        return capabilities->functions.contains(static_cast<unsigned int>(function));
    };
    for (auto* const link : {&old, &recent, &latest}) {
        for (int const function : {0x02, 0x03, 0x05, 0x06, 0x07, 0x08, 0x12, 0x13, 0x15, 0x16, 0x20, 0x41, 0x42, 0x48,
                                   0x49, 0x4A, 0x4B, 0x4D, 0x50, 0x53, 0x54, 0x56, 0x60, 0x61, 0x62, 0x63, 0x80}) {
            EXPECT_TRUE(has(*link, function)) << function;
        }
    }
    std::vector<std::vector<bool>> table;
    for (int const function : {0x04, 0x0A, 0x0B, 0x2A, 0x2E, 0x3D, 0xA8, 0xA9}) {
        table.push_back({has(old, function), has(recent, function), has(latest, function)});
    }
    EXPECT_EQ(table, (std::vector<std::vector<bool>>{{true, false, false},   // 04
                                                     {false, true, true},    // 0a
                                                     {false, true, true},    // 0b
                                                     {true, false, false},   // 2a
                                                     {false, true, false},   // 2e: the 800's memory is too large for it
                                                     {false, false, true},   // 3d
                                                     {false, true, true},    // a8
                                                     {false, true, true}})); // a9
}

TEST_F(ModuleSimStart, AcknowledgesAFunctionThatItLacksAndSaysNothing) {
    auto network = smallNetwork(Generation::series700);
    network.withoutFunctions = {api::GetSucNodeId::id};
    HeardLink link(network);
    EXPECT_FALSE(link.ask<api::GetCapabilities>()->functions.contains(api::GetSucNodeId::id));
    auto const acks = link.module.counters().acksSent;
    EXPECT_EQ(link.ask<api::GetSucNodeId>(), std::nullopt);
    EXPECT_EQ(link.module.counters().acksSent, acks + 1);
    EXPECT_EQ(link.host.session().counters().retransmissions, 0U);
}

TEST_F(ModuleSimStart, PassesOverARequestThatIsTooShort) {
    bool hasEnded = false;
    old.host.session().request({api::FrameType::request, api::GetNodeProtocolInfo::id, {}}, false, old.now);
    old.passes(Milliseconds(1000));
    for (auto const& event : old.host.session().takeEvents()) {
        hasEnded = hasEnded || event.kind == api::SessionEvent::Kind::response;
    }
    EXPECT_FALSE(hasEnded);
    EXPECT_EQ(old.ask<api::MemoryGetId>()->node, 1);
}

TEST_F(ModuleSimStart, DescribesEachKindOfNodeByItsProtocolInformation) {
    auto const info = [this](NodeId node) {
        return text(encodeForm(*recent.ask<api::GetNodeProtocolInfo>({node}), api::NodeIdWidth::one));
    };
    EXPECT_EQ(info(1), "93 16 01 02 02 01");
    EXPECT_EQ(info(2), "d3 9c 01 04 10 01");
    EXPECT_EQ(info(3), "53 dc 01 04 10 01");
    EXPECT_EQ(info(4), "53 9c 01 04 10 01");
    EXPECT_EQ(info(6), "00 00 00 00 00 00");
}

TEST_F(ModuleSimStart, SaysThatItHasStartedAfterASoftReset) {
    recent.host.call<api::SoftReset>({}, {}, recent.now);
    recent.passes(Milliseconds(1500));
    EXPECT_EQ(recent.heard, Texts{"0a 07 00 01 02 01 00 00"});
    EXPECT_EQ(recent.host.session().counters().retransmissions, 0U);
    old.host.call<api::SoftReset>({}, {}, old.now);
    old.passes(Milliseconds(1500));
    EXPECT_EQ(old.heard, Texts{});
    EXPECT_EQ(old.ask<api::MemoryGetId>()->homeId, 0xC0FFEE01U);
}

TEST_F(ModuleSimStart, IsDeafWhileItStarts) {
    recent.host.call<api::SoftReset>({}, {}, recent.now);
    recent.exchange();
    recent.host.call<api::GetVersion>({}, {}, recent.now);
    recent.passes(Milliseconds(3000));
    EXPECT_EQ(recent.host.session().counters().retransmissions, 1U);
    EXPECT_EQ(recent.host.openCalls(), 0U);
}

TEST_F(ModuleSimStart, SaysThatTheWatchdogHasRestartedIt) {
    recent.module.restart();
    recent.passes(Milliseconds(1000));
    EXPECT_EQ(recent.heard, Texts{"0a 03 00 01 02 01 00 00"});
}

TEST_F(ModuleSimStart, TellsTheTimesThatItWaited) {
    auto const times = old.ask<api::SetTimeouts>({100, 15});
    EXPECT_EQ(times->ackTime, 150);
    EXPECT_EQ(times->byteTime, 15);
    EXPECT_EQ(old.ask<api::SetTimeouts>({10, 10})->ackTime, 100);
}

TEST_F(ModuleSimStart, TakesNodeIdsOfTwoBytesUntilItRestarts) {
    api::SerialApiSetup::Request wide;
    wide.command = api::SerialApiSetup::setNodeIdWidth;
    wide.value = 2;
    EXPECT_EQ(recent.ask<api::SerialApiSetup>(wide)->value, 1);
    recent.host.nodeIdWidth(api::NodeIdWidth::two);
    EXPECT_EQ(recent.ask<api::MemoryGetId>()->node, 1);
    EXPECT_EQ(recent.ask<api::GetNodeProtocolInfo>({2})->generic, 0x10);
    recent.host.call<api::SoftReset>({}, {}, recent.now);
    recent.passes(Milliseconds(1500));
    recent.host.nodeIdWidth(api::NodeIdWidth::one);
    EXPECT_EQ(recent.ask<api::GetNodeProtocolInfo>({2})->generic, 0x10);
}

TEST_F(ModuleSimStart, AnswersASetupCommandThatItDoesNotKnow) {
    api::SerialApiSetup::Request request;
    request.command = api::SerialApiSetup::getSupportedRegions;
    auto const response = recent.ask<api::SerialApiSetup>(request);
    EXPECT_EQ(response->command, api::SerialApiSetup::unsupported);
    EXPECT_EQ(response->value, api::SerialApiSetup::getSupportedRegions);
}

TEST_F(ModuleSimStart, ListsItsSetupCommandsAsFlagsAndAsAMask) {
    api::SerialApiSetup::Request request;
    request.command = api::SerialApiSetup::supportedCommands;
    auto const response = recent.ask<api::SerialApiSetup>(request);
    EXPECT_EQ(response->value, 0x01 | 0x02 | 0x10 | 0x20 | 0x40 | 0x80);
    EXPECT_EQ((api::BitMask{response->commandMask}.numbers()), (Ids{0x01, 0x02, 0x10, 0x12, 0x13, 0x20, 0x40, 0x80}));
}

TEST_F(ModuleSimStart, GivesTheSameBytesForTheSameSeed) {
    HeardLink again(smallNetwork(Generation::series700));
    auto const random = recent.ask<api::GetRandom>({Byte{32}})->random;
    EXPECT_EQ(random.size(), 32U);
    EXPECT_EQ(again.ask<api::GetRandom>({Byte{32}})->random, random);
    auto network = smallNetwork(Generation::series700);
    network.seed = 2;
    EXPECT_NE(HeardLink(network).ask<api::GetRandom>({Byte{32}})->random, random);
    EXPECT_EQ(recent.ask<api::GetRandom>({Byte{0}})->random.size(), 2U);
    EXPECT_EQ(recent.ask<api::GetRandom>({Byte{200}})->random.size(), 32U);
}

TEST_F(ModuleSimStart, ForgetsItsNetworkAndTakesAnotherHomeId) {
    EXPECT_EQ(old.follow<api::SetDefault>({}, Milliseconds(1000)), "called done");
    EXPECT_NE(old.module.homeId(), 0xC0FFEE01U);
    EXPECT_GE(old.module.homeId(), 0xC0000000U);
    EXPECT_EQ(old.module.nodes(), Ids{1});
    EXPECT_EQ(old.heard, Texts{});
    EXPECT_EQ(recent.follow<api::SetDefault>({}, Milliseconds(1000)), "called done");
    EXPECT_EQ(recent.module.nodes(), Ids{1});
    EXPECT_EQ(recent.heard, Texts{"0a 07 00 01 02 01 00 00"}); // it restarts
}

} // namespace zorv::modulesim
