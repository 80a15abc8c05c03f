// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/ScriptedModule.h"
#include "zwave/libcontroller/Controller.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zorv {

/// Writes down what a controller finds out, in short lines.
class Diary : public controller::Observer {
public:
    void moduleStateChanged(controller::ModuleState state) override {
        static std::map<controller::ModuleState, char const*> const names{
            {controller::ModuleState::absent, "absent"},
            {controller::ModuleState::starting, "starting"},
            {controller::ModuleState::ready, "ready"},
            {controller::ModuleState::silent, "silent"}};
        lines.push_back(std::string("module ") + names.at(state));
    }
    void nodeAdded(Device const& device) override { tell("added", device); }
    void nodeChanged(Device const& device) override { changes.push_back(device); }
    void nodeRemoved(Device const& device) override { tell("removed", device); }
    void commandReceived(controller::ReceivedCommand const& command) override {
        lines.push_back("command of " + std::to_string(command.source));
    }
    void interviewed(Device const& device, controller::InterviewStage stage) override {
        stages.emplace_back(device.address().nodeId(), stage);
    }
    void noted(std::string const& text) override { lines.push_back(text); }

    std::vector<std::string> take() { return std::exchange(lines, {}); }

    std::vector<std::string> lines;
    std::vector<Device> changes;
    std::vector<std::pair<unsigned int, controller::InterviewStage>> stages;

private:
    void tell(char const* what, Device const& device) {
        lines.push_back(std::string(what) + ' ' + device.address().address());
    }
};

/// A controller, a module that answers as it is told to, and a clock that stands still unless it is moved.
struct ControllerStage {
    using Bytes = serialapi::Bytes;
    using Byte = serialapi::Byte;

    /// `function`, where it is given, is one more that the module knows.
    explicit ControllerStage(bool isBridge = false, bool interviews = false, Byte function = 0)
        : controller(diary, interviews) {
        introduce(isBridge, function);
    }

    /// The answers to a start-up: node 1 is the module's own, 5 a switch, 8 a sensor that sleeps.
    void introduce(bool isBridge, Byte function = 0) {
        module.answers<serialapi::GetVersion>({'Z', '-', 'W', 'a', 'v', 'e', ' ', '4', '.', '0', '5', 0, 1});
        serialapi::BitMask functions;
        functions.bytes.resize(32);
        for (auto const id : {0x02, 0x03, 0x04, 0x05, 0x07, 0x08, 0x12, 0x13, 0x14, 0x15, 0x16, 0x20,
                              0x41, 0x42, 0x48, 0x4A, 0x4B, 0x50, 0x53, 0x56, 0x60, 0x61, 0x62, 0x63}) {
            functions.insert(static_cast<unsigned int>(id));
        }
        if (isBridge) {
            for (auto const id : {0x0B, 0x2E, 0xA8, 0xA9, 0xAB}) { functions.insert(static_cast<unsigned int>(id)); }
        } else {
            for (auto const id : {0x10, 0x29, 0x2A, 0x2B}) { functions.insert(static_cast<unsigned int>(id)); }
        }
        if (function != 0) { functions.insert(function); }
        Bytes capabilities{1, 0, 0x02, 0x3F, 0, 1, 0, 2};
        capabilities.insert(capabilities.end(), functions.bytes.begin(), functions.bytes.end());
        module.answers<serialapi::GetCapabilities>(capabilities);
        module.answers<serialapi::GetControllerCapabilities>({0x1C});
        module.answers<serialapi::GetSucNodeId>({1});
        module.answers<serialapi::MemoryGetId>({0xC0, 0xFF, 0xEE, 0x01, 1});
        module.answers<serialapi::SetRfReceiveMode>({1});
        module.answers<serialapi::NvmBackupRestore>({1, 0, 0, 0});
        module.answers<serialapi::SetLearnMode>({1});
        module.answers<serialapi::SerialApiSetup>({0x01, 0x00});
        hasNodes({1, 5, 8});
        module.on<serialapi::GetNodeProtocolInfo>([](Bytes const& parameters) -> std::vector<serialapi::Frame> {
            static std::map<Byte, Bytes> const nodes{{Byte{1}, {0x93, 0x16, 0x01, 0x02, 0x02, 0x01}},
                                                     {Byte{8}, {0x53, 0x9C, 0x00, 0x04, 0x20, 0x01}}};
            auto const found = nodes.find(parameters.at(0));
            Bytes const mainsSwitch{0xD3, 0x9C, 0x01, 0x04, 0x10, 0x01};
            return {ScriptedModule::response(0x41, found == nodes.end() ? mainsSwitch : found->second)};
        });
    }

    void hasNodes(std::vector<unsigned int> const& nodes) {
        serialapi::BitMask mask;
        mask.bytes.resize(29);
        for (auto const node : nodes) { mask.insert(node); }
        Bytes data{5, 0x08, 29};
        data.insert(data.end(), mask.bytes.begin(), mask.bytes.end());
        data.insert(data.end(), {5, 0});
        module.answers<serialapi::GetInitData>(data);
    }

    /// A stage whose controller is ready.
    void open() {
        controller.start(now);
        play();
        module.takeHeard();
        diary.take();
    }

    /// Carries bytes both ways until both are quiet.
    void play() {
        for (auto bytes = controller.takeOutput(); !bytes.empty(); bytes = controller.takeOutput()) {
            controller.receive(module.exchange(bytes, now), now);
        }
    }

    /// The module sends a frame by itself.
    void hears(Byte function, Bytes parameters) {
        controller.receive(ScriptedModule::request(function, std::move(parameters)).encode(), now);
        play();
    }

    /// Time passes; the controller is woken whenever it has asked for it.
    void passes(serialapi::Milliseconds time) {
        auto const end = now + time;
        for (auto next = controller.deadline(); next && *next <= end; next = controller.deadline()) {
            now = std::max(now, *next);
            controller.tick(now);
            play();
        }
        now = end;
    }

    /// Hands a job in; its end is written down as "done", or with its reason.
    controller::Submission submit(std::shared_ptr<controller::Job> const& job) {
        auto const submission = controller.submit(
            job, [this, job] { ends.push_back(endOf(*job)); }, now);
        play();
        return submission;
    }

    static std::string endOf(controller::Job const& job) {
        std::string const state = toString(job.state());
        return job.reason().empty() || job.reason() == state ? state : state + ": " + job.reason();
    }

    std::vector<std::string> takeEnds() { return std::exchange(ends, {}); }

    Diary diary;
    ScriptedModule module;
    controller::Controller controller;
    serialapi::TimePoint now{};
    std::vector<std::string> ends;
};

} // namespace zorv
