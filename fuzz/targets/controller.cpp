// SPDX-License-Identifier: Apache-2.0
// A controller with jobs, and a module that says whatever it likes.

#include "fuzz/Script.h"
#include "fuzz/Target.h"
#include "fuzz/recordedLines.h"

#include "tests/support/ControllerStage.h"
#include "tests/support/anyJob.h"

#include <cstddef>
#include <memory>

namespace zorv::fuzz {

namespace {

using namespace controller;
using serialapi::Frame;
using serialapi::FrameType;

class Story {
public:
    explicit Story(std::string const& input)
        : script_(input), head_(script_.byte()), stage_((head_ & 1U) != 0, (head_ & 2U) != 0) {}

    void tell() {
        // A module may be strange from the start, or as soon as it is known.
        if ((head_ & 4U) == 0) {
            stage_.open();
        } else {
            stage_.controller.start(stage_.now);
        }
        while (!script_.isOver()) {
            step();
            stage_.play();
            auto const queues = stage_.controller.queues();
            expect(queues.waiting <= limits::waitingFrames && queues.sleepers <= limits::sleepersFrames,
                   "what waits has its bounds");
            stage_.diary.take();
            stage_.diary.changes.clear();
            stage_.diary.stages.clear();
            stage_.module.takeHeard();
        }
        end();
    }

private:
    static constexpr unsigned int steps = 13;

    void step() {
        auto& controller = stage_.controller;
        switch (script_.byte() % steps) {
        case 0: controller.receive(script_.bytes(), stage_.now); break;
        case 1: controller.receive(script_.frame().encode(), stage_.now); break;
        case 2: {
            auto const frame = script_.frame();
            stage_.hears(frame.function, frame.parameters);
            break;
        }
        case 3: answer(); break;
        case 4: stage_.passes(script_.time()); break;
        case 5:
        case 6: submit(); break;
        case 7: controller.cancel(script_.byte(), stage_.now); break;
        case 8: stage_.module.hang(script_.flag()); break;
        case 9: {
            // A node's command, in a frame that says so rightly.
            auto const status = script_.byte();
            auto const source = script_.byte();
            auto const data = script_.bytes();
            serialapi::Bytes parameters{status, source, static_cast<serialapi::Byte>(data.size())};
            parameters.insert(parameters.end(), data.begin(), data.end());
            parameters.resize(std::min(parameters.size(), Frame::largestParameters));
            stage_.hears(serialapi::ApplicationCommandHandler::id, std::move(parameters));
            break;
        }
        case 10:
            controller.lost(stage_.now);
            controller.start(stage_.now);
            break;
        case 11: callBack(); break;
        default: reportsTransmissions(script_.byte()); break;
        }
    }

    /// From now on a function is answered in this way.
    void answer() {
        auto const function = script_.byte();
        auto const count = script_.byte() % 4;
        std::vector<Frame> frames;
        for (int i = 0; i < count; ++i) { frames.push_back(script_.frame()); }
        stage_.module.on(function, [frames](serialapi::Bytes const&) { return frames; });
    }

    /// As a module that goes on with what it was asked for last, the callback id among the parameters.
    void callBack() {
        auto const function = script_.byte();
        auto const id = script_.byte();
        auto parameters = script_.bytes();
        parameters.insert(parameters.begin(), id);
        parameters.resize(std::min(parameters.size(), Frame::largestParameters));
        stage_.hears(function, std::move(parameters));
    }

    /// From now on a transmission is taken, and ends with this status.
    void reportsTransmissions(serialapi::Byte status) {
        using serialapi::SendData;
        stage_.module.on<SendData>([status](serialapi::Bytes const& parameters) -> std::vector<Frame> {
            auto const callbackId = parameters.empty() ? serialapi::Byte{0} : parameters.back();
            return {
                ScriptedModule::response(SendData::id, {1}),
                ScriptedModule::request(SendData::id, {callbackId, status, serialapi::Byte{0}, serialapi::Byte{2}})};
        });
    }

    void submit() {
        auto const job = anyJob([this] { return script_.byte(); });
        if (stage_.submit(job)) { jobs_.push_back(job); }
    }

    void end() {
        stage_.controller.windUp(stage_.now);
        stage_.play();
        // The longest job takes an hour, and the module may be asked who it is again and again.
        stage_.passes(serialapi::Milliseconds(2 * 3'600'000));
        expect(stage_.controller.isIdle(), "every job ends");
        stage_.controller.lost(stage_.now);
        for (auto const& job : jobs_) { expect(job->isOver(), std::string("a job is over: ") + job->name()); }
        expect(stage_.ends.size() == jobs_.size(), "and its end is told once");
    }

    Script script_;
    serialapi::Byte head_;
    ControllerStage stage_;
    std::vector<std::shared_ptr<Job>> jobs_;
};

void run(std::string const& input) { Story(input).tell(); }

/// A transmission to the node of the stage that sleeps, as anyJob reads it.
void submitToSleeper(ScriptWriter& script, unsigned int asleep) {
    constexpr unsigned int transmission = jobKinds - 1;
    script.byte(5).byte(transmission).byte(200); // seconds
    script.byte(0).byte(8);                      // one node
    script.byte(1).byte(asleep).byte(0);
    script.byte(1).bytes({0x25, 0x01, 0xFF});
}

void wakeUp(ScriptWriter& script) { script.byte(9).byte(0).byte(8).bytes({0x84, 0x07}); }

/// What waits for a node that sleeps, how it goes when the node wakes up, and how the node is sent to sleep again.
void addSleepers(Target::Texts& texts) {
    for (unsigned int const status : {0U, 1U}) { // acknowledged, or not
        for (unsigned int asleep = 0; asleep < 3; ++asleep) {
            ScriptWriter script;
            script.byte(2).byte(12).byte(status);
            submitToSleeper(script, asleep);
            submitToSleeper(script, 0);
            wakeUp(script);
            submitToSleeper(script, asleep);
            script.byte(4).number(1500);
            wakeUp(script);
            script.byte(12).byte(1 - status).byte(7).byte(2);
            submitToSleeper(script, 0);
            script.byte(9).byte(0).byte(8).bytes({0x25, 0x03, 0xFF}).byte(4).number(60'000);
            texts.push_back(script.text());
        }
    }
    ScriptWriter script;
    script.byte(2).byte(12).byte(0);
    for (std::size_t i = 0; i < limits::sleepersFrames + 2; ++i) { submitToSleeper(script, 0); }
    wakeUp(script);
    texts.push_back(script.text());
}

Target::Texts seeds() {
    Target::Texts texts;
    addSleepers(texts);
    // What modules have said, to a controller that asks other things.
    for (auto const& recording : recordedLines()) {
        ScriptWriter script;
        script.byte(2);
        for (auto const& line : recording) {
            if (!line.isHost) { script.byte(0).bytes(line.bytes).byte(4).number(20); }
        }
        texts.push_back(script.text());
    }
    // Each job, with a module that does not answer, or says yes and calls back.
    for (unsigned int kind = 0; kind < jobKinds; ++kind) {
        for (auto const accepted : {serialapi::Byte{0}, serialapi::Byte{1}}) {
            ScriptWriter script;
            script.byte(2).byte(5).byte(kind).byte(5).byte(0).byte(1).byte(4).number(1000);
            for (auto const& function : functionWords()) {
                script.byte(11).byte(static_cast<unsigned char>(function[0])).byte(1).bytes({accepted, 2, 3});
                if (script.text().size() > 200) { break; }
            }
            script.byte(4).number(60'000).byte(2).byte(0).byte(0x4A).bytes({1, accepted, 5, 0});
            texts.push_back(script.text());
        }
    }
    return texts;
}

Registration const registration({"controller", &run, &seeds, &functionWords});

} // namespace

} // namespace zorv::fuzz
