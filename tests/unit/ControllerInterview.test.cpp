// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/Interview.h"

#include "tests/support/ControllerStage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace zorv::controller {

namespace {

using Lines = std::vector<std::string>;
using serialapi::Frame;
using serialapi::Milliseconds;
using serialapi::SendData;

constexpr Byte command = 0x04; // ApplicationCommandHandler

/// A node that answers: what it is asked, and the frames by which it answers.
struct ControllerInterview : testing::Test, ControllerStage {
    ControllerInterview() : ControllerStage(false, true) {
        hasNodes({1, 5});
        module.answers<serialapi::RequestNodeInfo>({1});
        module.on<serialapi::RequestNodeInfo>([](Bytes const& parameters) -> std::vector<Frame> {
            auto const node = parameters.at(0);
            Bytes information{0x84, node, 7, 4, 0x10, 1, 0x25, 0x72, 0x86, 0x84};
            return {ScriptedModule::response(0x60, {1}), ScriptedModule::request(0x49, information)};
        });
        nodeAnswers(all);
    }

    enum Answers { all, withoutMaker, none };
    void nodeAnswers(Answers answers) {
        module.on<SendData>([answers](Bytes const& parameters) {
            std::vector<Frame> frames{ScriptedModule::response(SendData::id, {1}),
                                      ScriptedModule::request(SendData::id, {parameters.back(), Byte{0}})};
            auto const node = parameters.at(0);
            auto const type = parameters.at(2);
            auto const answer = [&frames, node](Bytes const& data) {
                Bytes received{0, node, static_cast<Byte>(data.size())};
                received.insert(received.end(), data.begin(), data.end());
                frames.push_back(ScriptedModule::request(command, received));
            };
            if (answers == none) { return frames; }
            if (type == 0x72 && answers != withoutMaker) { answer({0x72, 0x05, 0x02, 0x3F, 0, 3, 0, 4}); }
            if (type == 0x86) { answer({0x86, 0x14, parameters.at(4), 2}); }
            if (type == 0x84 && parameters.at(3) == 0x05) { answer({0x84, 0x06, 0, 0x0E, 0x10, 0}); }
            return frames;
        });
    }
    void nobodyAcknowledges() {
        module.on<SendData>([](Bytes const& parameters) {
            return std::vector<Frame>{ScriptedModule::response(SendData::id, {1}),
                                      ScriptedModule::request(SendData::id, {parameters.back(), Byte{1}})};
        });
    }
    Device const& node(NodeId id) const { return *controller.network().nodes.find(id); }
    Lines asked() {
        Lines asked;
        for (auto const& line : module.takeHeard()) {
            if (line.rfind("13 ", 0) == 0 || line.rfind("60 ", 0) == 0) { asked.push_back(line); }
        }
        return asked;
    }
    void starts() {
        controller.start(now);
        play();
    }
};

TEST_F(ControllerInterview, AsksANodeWhatItIs) {
    starts();
    EXPECT_EQ(asked(), (Lines{"60 05", "13 05 02 72 04 25 01", "13 05 03 86 13 25 25 02", "13 05 03 86 13 72 25 03",
                              "13 05 03 86 13 84 25 04", "13 05 03 86 13 86 25 05"}));
    EXPECT_EQ(node(5).deviceStatus(), DeviceStatus::ready);
    EXPECT_EQ(node(5).deviceInfo().manufacturer().searchType(), "023f:0003:0004");
    EXPECT_EQ(node(5).commandClasses().at(CommandClassType::switchBinary).classVersion(), 2);
    EXPECT_EQ(node(5).configErrors(), 0);
    std::vector<std::pair<unsigned int, InterviewStage>> const stages{
        {5, InterviewStage::start},    {5, InterviewStage::commandClasses}, {5, InterviewStage::manufacturer},
        {5, InterviewStage::versions}, {5, InterviewStage::versions},       {5, InterviewStage::versions},
        {5, InterviewStage::versions}, {5, InterviewStage::finished}};
    EXPECT_EQ(diary.stages, stages);
}

TEST_F(ControllerInterview, DoesNotAskANodeOfWhichAllIsKnown) {
    Device known(ZwaveAddress(0xC0FFEE01, 5), {});
    known.deviceStatus(DeviceStatus::ready);
    controller.remember(known);
    starts();
    EXPECT_EQ(asked(), Lines{});
}

TEST_F(ControllerInterview, GoesOnWhereAnEarlierOneWasBrokenOff) {
    Device known(ZwaveAddress(0xC0FFEE01, 5), DeviceInfo(Manufacturer(ManufacturerId::zorv, 3, 4), {}, true, false));
    known.deviceStatus(DeviceStatus::configuring);
    known.commandClass(CommandClassType::switchBinary, CommandClassInfo(2, CommandClassAttribs::supported));
    known.commandClass(CommandClassType::version, CommandClassInfo(0, CommandClassAttribs::supported));
    controller.remember(known);
    starts();
    EXPECT_EQ(asked(), Lines{"13 05 03 86 13 86 25 01"});
    EXPECT_EQ(node(5).deviceStatus(), DeviceStatus::ready);
}

TEST_F(ControllerInterview, PassesOverAQuestionThatIsNotAnsweredAndCountsIt) {
    nodeAnswers(withoutMaker);
    starts();
    passes(3 * limits::answerTime);
    auto const questions = asked();
    EXPECT_EQ(std::count_if(questions.begin(), questions.end(),
                            [](std::string const& line) { return line.rfind("13 05 02 72 04", 0) == 0; }),
              3);
    EXPECT_EQ(node(5).deviceStatus(), DeviceStatus::incomplete);
    EXPECT_EQ(node(5).configErrors(), 1);
    EXPECT_EQ(node(5).commandClasses().at(CommandClassType::switchBinary).classVersion(), 2);
}

TEST_F(ControllerInterview, GivesUpANodeThatCannotBeReached) {
    nobodyAcknowledges();
    starts();
    EXPECT_EQ(asked(), (Lines{"60 05", "13 05 02 72 04 25 01", "13 05 02 72 04 25 02", "13 05 02 72 04 25 03"}));
    EXPECT_EQ(node(5).deviceStatus(), DeviceStatus::incomplete);
    EXPECT_EQ(diary.stages.back().second, InterviewStage::interrupted);
    EXPECT_EQ(controller.deadline(), std::nullopt);
}

TEST_F(ControllerInterview, GivesUpANodeThatDoesNotSayWhatItIs) {
    module.on<serialapi::RequestNodeInfo>([](Bytes const&) -> std::vector<Frame> {
        return {ScriptedModule::response(0x60, {1}), ScriptedModule::request(0x49, {0x81, 0, 0})};
    });
    starts();
    EXPECT_EQ(asked(), (Lines{"60 05", "60 05", "60 05"}));
    EXPECT_EQ(node(5).deviceStatus(), DeviceStatus::incomplete);
}

TEST_F(ControllerInterview, BoundsWhatItWaitsForANodeThatIsSilent) {
    module.answers<serialapi::RequestNodeInfo>({1});
    starts();
    passes(3 * limits::answerTime);
    EXPECT_EQ(asked(), (Lines{"60 05", "60 05", "60 05"}));
    EXPECT_EQ(diary.stages.back().second, InterviewStage::interrupted);
}

TEST_F(ControllerInterview, AsksASleepingNodeWhenItWakesUpAndLetsItSleepAfterwards) {
    hasNodes({1, 8});
    starts();
    EXPECT_EQ(asked(), Lines{});
    hears(command, {0, 8, 2, 0x84, 0x07});
    auto const questions = asked();
    ASSERT_GE(questions.size(), 2U);
    EXPECT_EQ(questions[questions.size() - 2].substr(0, 14), "13 08 02 84 05");
    EXPECT_EQ(questions.back().substr(0, 26), "13 08 06 84 04 00 0e 10 01");
    EXPECT_EQ(node(8).deviceStatus(), DeviceStatus::ready);
    EXPECT_EQ(node(8).wakeStatus(), WakeStatus::awake);
    passes(limits::idleTime);
    EXPECT_EQ(asked().front().substr(0, 14), "13 08 02 84 08");
    EXPECT_EQ(node(8).wakeStatus(), WakeStatus::asleep);
}

TEST_F(ControllerInterview, FailsWithThePortAndGoesOnWithTheNextOne) {
    nodeAnswers(withoutMaker);
    starts();
    controller.lost(now);
    nodeAnswers(all);
    starts();
    EXPECT_EQ(node(5).deviceStatus(), DeviceStatus::ready);
}

TEST_F(ControllerInterview, AsksANodeThatHasComeIn) {
    hasNodes({1});
    starts();
    hears(0x49, {0x40, 9, 4, 4, 0x10, 1, 0x25});
    EXPECT_EQ(node(9).deviceStatus(), DeviceStatus::ready);
}

} // namespace

} // namespace zorv::controller
