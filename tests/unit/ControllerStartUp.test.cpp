// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ControllerStage.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <string>
#include <vector>

namespace zorv::controller {

namespace {

using Lines = std::vector<std::string>;
using serialapi::Milliseconds;

struct ControllerStartUp : testing::Test, ControllerStage {};

TEST_F(ControllerStartUp, AsksAModuleOfThe500SeriesWhoItIs) {
    controller.start(now);
    play();
    EXPECT_EQ(module.takeHeard(), (Lines{"15", "07", "4a 05", "4b 05", "50 00 00", "10 01", "05", "56", "20",
                                         "03 01 02 01 00", "02", "41 01", "41 05", "41 08"}));
    EXPECT_EQ(diary.take(),
              (Lines{"module starting", "added c0ffee01:1", "added c0ffee01:5", "added c0ffee01:8", "module ready"}));
    auto const& network = controller.network();
    EXPECT_EQ(network.homeId, 0xC0FFEE01U);
    EXPECT_EQ(network.ownNode, 1);
    EXPECT_EQ(network.module.version, "Z-Wave 4.05");
    EXPECT_EQ(network.module.libraryType, 1);
    EXPECT_EQ(network.module.roles, 0x1C);
    EXPECT_EQ(network.module.sucNode, 1);
    EXPECT_EQ(network.module.chipType, 5);
    EXPECT_EQ(network.module.apiVersion, 5);
    EXPECT_EQ(network.module.capabilities.productId, 2);
}

TEST_F(ControllerStartUp, BeginsWithANak) {
    controller.start(now);
    EXPECT_EQ(controller.takeOutput().front(), serialapi::control::nak);
}

TEST_F(ControllerStartUp, SetsUpAModuleOfThe700Series) {
    introduce(true);
    module.on<serialapi::SerialApiSetup>([](Bytes const& parameters) -> std::vector<serialapi::Frame> {
        auto const command = parameters.at(0);
        if (command == 0x01) { return {ScriptedModule::response(0x0B, {0x01, 0xFF})}; }
        return {ScriptedModule::response(0x0B, {command, Byte{1}})};
    });
    controller.start(now);
    play();
    EXPECT_EQ(module.takeHeard(),
              (Lines{"15", "07", "4a 05", "4b 05", "50 00 00", "2e 03 00 00 00", "0b 01", "0b 80 01", "0b 02 01",
                     "0b 20", "05", "56", "20", "03 01 02 01 00", "02", "41 01", "41 05", "41 08"}));
    EXPECT_EQ(controller.state(), ModuleState::ready);
    EXPECT_EQ(controller.network().module.region, 1);
}

TEST_F(ControllerStartUp, DescribesEachNodeByWhatTheModuleSaysOfIt) {
    open();
    auto const& nodes = controller.network().nodes;
    EXPECT_FALSE(nodes.find(5)->isSleeping());
    EXPECT_EQ(nodes.find(5)->deviceInfo().protocolInfo().genericDeviceType(), GenericDeviceType::switchBinary);
    EXPECT_TRUE(nodes.find(5)->deviceInfo().isSlave());
    EXPECT_TRUE(nodes.find(8)->isSleeping());
    EXPECT_EQ(nodes.find(8)->wakeStatus(), WakeStatus::asleep);
    EXPECT_FALSE(nodes.find(1)->deviceInfo().isSlave());
    EXPECT_EQ(nodes.find(1)->deviceStatus(), DeviceStatus::ready);
    EXPECT_EQ(nodes.find(2), nullptr);
}

TEST_F(ControllerStartUp, KeepsWhatIsRememberedOfANodeThatIsStillThere) {
    Device known(ZwaveAddress(0xC0FFEE01, 5), DeviceInfo(Manufacturer(ManufacturerId::zorv, 3, 4), {}, true, false));
    known.deviceStatus(DeviceStatus::ready);
    known.commandClass(CommandClassType::switchBinary, CommandClassInfo(2, CommandClassAttribs::supported));
    controller.remember(known);
    open();
    auto const* const device = controller.network().nodes.find(5);
    EXPECT_EQ(device->deviceInfo().manufacturer().productId(), 4);
    EXPECT_EQ(device->deviceInfo().protocolInfo().genericDeviceType(), GenericDeviceType::switchBinary);
    EXPECT_EQ(device->commandClasses().at(CommandClassType::switchBinary).classVersion(), 2);
}

TEST_F(ControllerStartUp, ForgetsWhatIsRememberedOfAnotherNetwork) {
    Device known(ZwaveAddress(0xC0FFEE02, 5), {});
    known.deviceStatus(DeviceStatus::ready);
    controller.remember(known);
    open();
    EXPECT_EQ(controller.network().nodes.find(5)->deviceStatus(), DeviceStatus::unknown);
}

TEST_F(ControllerStartUp, TellsOfANodeThatTheModuleHasLostAndForgetsIt) {
    Device known(ZwaveAddress(0xC0FFEE01, 7), {});
    known.commandClass(CommandClassType::switchBinary, CommandClassInfo(2, CommandClassAttribs::supported));
    controller.remember(known);
    controller.start(now);
    play();
    auto const lines = diary.take();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "removed c0ffee01:7"), 1);
    hasNodes({1, 5, 7, 8});
    controller.lost(now);
    controller.start(now);
    play();
    ASSERT_NE(controller.network().nodes.find(7), nullptr);
    EXPECT_TRUE(controller.network().nodes.find(7)->commandClasses().empty()); // another node by now
}

TEST_F(ControllerStartUp, ResetsAModuleThatDoesNotAnswerOnceAndAsksAgainAfterAPause) {
    module.isSilentOn<serialapi::GetVersion>();
    controller.start(now);
    play();
    EXPECT_EQ(module.takeHeard(), Lines{"15"});
    passes(Milliseconds(10'000));
    EXPECT_EQ(module.takeHeard(), Lines{"08"});
    passes(limits::restartTime);
    EXPECT_EQ(module.takeHeard(), Lines{"15"});
    passes(Milliseconds(10'000));
    EXPECT_EQ(controller.state(), ModuleState::silent);
    introduce(false);
    passes(limits::startUpPause);
    EXPECT_EQ(controller.state(), ModuleState::ready);
}

TEST_F(ControllerStartUp, ResetsAModuleThatStaysSilentNoSecondTimeUnlessItHasAnsweredMeanwhile) {
    module.isSilentOn<serialapi::GetVersion>();
    controller.start(now);
    play();
    passes(Milliseconds(100'000));
    auto heard = module.takeHeard();
    EXPECT_EQ(std::count(heard.begin(), heard.end(), "08"), 1);
    EXPECT_GE(std::count(heard.begin(), heard.end(), "15"), 5);
    introduce(false);
    passes(Milliseconds(30'000));
    ASSERT_EQ(controller.state(), ModuleState::ready);
    module.takeHeard();
    module.isSilentOn<serialapi::GetVersion>();
    hears(0x0A, {3, 0, 1, 2, 1, 0});
    passes(Milliseconds(100'000));
    heard = module.takeHeard();
    EXPECT_EQ(std::count(heard.begin(), heard.end(), "08"), 1);
}

TEST_F(ControllerStartUp, TakesAModuleThatAcknowledgesNothingForSilent) {
    module.hang();
    controller.start(now);
    passes(Milliseconds(50'000));
    EXPECT_EQ(diary.take(), (Lines{"module starting", "module silent", "module starting", "module silent"}));
}

TEST_F(ControllerStartUp, BeginsAgainWhereTheModuleRestartsMeanwhile) {
    module.isSilentOn<serialapi::GetInitData>();
    controller.start(now);
    play();
    introduce(false);
    module.takeHeard();
    hears(0x0A, {3, 0, 1, 2, 1, 0});
    passes(Milliseconds(15'000));
    EXPECT_EQ(controller.state(), ModuleState::ready);
}

TEST_F(ControllerStartUp, IsNotEndedByTheEndOfWhatWasAskedBeforeARestart) {
    controller.start(now);
    auto const asked = controller.takeOutput();
    controller.receive(ScriptedModule::request(0x0A, {3, 0, 1, 2, 1, 0}).encode(), now);
    controller.receive(module.exchange(asked, now), now);
    play();
    EXPECT_EQ(module.takeHeard(), (Lines{"15", "15", "07", "4a 05", "4b 05", "50 00 00", "10 01", "05", "56", "20",
                                         "03 01 02 01 00", "02", "41 01", "41 05", "41 08"}));
    EXPECT_EQ(diary.take().back(), "module ready");
}

TEST_F(ControllerStartUp, ReadsAModuleAgainThatHasRestartedByItself) {
    open();
    hears(0x0A, {3, 0, 1, 2, 1, 0});
    EXPECT_EQ(diary.take(), (Lines{"the module has restarted", "module starting", "module ready"}));
    EXPECT_EQ(module.takeHeard().front(), "15");
}

TEST_F(ControllerStartUp, AcknowledgesTheFrameByWhichAModuleSaysThatItHasRestarted) {
    open();
    controller.receive(ScriptedModule::request(0x0A, {3, 0, 1, 2, 1, 0}).encode(), now);
    EXPECT_EQ(controller.takeOutput().front(), serialapi::control::ack);
}

TEST_F(ControllerStartUp, TellsWhichNodesHaveComeAndGoneSinceTheModuleWasReadLast) {
    open();
    hasNodes({1, 8, 9});
    hears(0x0A, {3, 0, 1, 2, 1, 0});
    EXPECT_EQ(diary.take(), (Lines{"the module has restarted", "module starting", "removed c0ffee01:5",
                                   "added c0ffee01:9", "module ready"}));
}

TEST_F(ControllerStartUp, TellsThatTheModuleIsAbsentOnceThePortIsLost) {
    open();
    controller.lost(now);
    EXPECT_EQ(diary.take(), Lines{"module absent"});
    EXPECT_EQ(controller.deadline(), std::nullopt);
    controller.start(now);
    play();
    EXPECT_EQ(diary.take(), (Lines{"module starting", "module ready"}));
}

} // namespace

} // namespace zorv::controller
