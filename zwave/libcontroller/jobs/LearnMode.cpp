// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/LearnMode.h"

namespace zorv::controller {

using serialapi::CallEnd;
using serialapi::SetLearnMode;

namespace {

constexpr Milliseconds learningTime{60'000}; // of another controller, from its beginning to its end

} // namespace

std::string LearnModeJob::objection(Network const& network) const {
    if (mode_ == LearnMode::disabled) { return "it names no mode"; }
    return network.module.knows<SetLearnMode>() ? "" : "the module does not know how";
}

void LearnModeJob::run() {
    serialapi::CallHandlers<SetLearnMode> handlers;
    handlers.callback = [this](serialapi::ModeCallback const& callback) { onCallback(callback); };
    handlers.end = [this](CallEnd end) {
        if (end != CallEnd::done && problem_.empty()) { problem_ = complaint(end); }
        leave();
    };
    call<SetLearnMode>({static_cast<Byte>(mode_), std::nullopt}, std::move(handlers));
}

void LearnModeJob::onCallback(serialapi::ModeCallback const& callback) {
    if (callback.status == serialapi::mode::ready) { // here it says that the other controller has begun
        hasStarted_ = true;
        step(learningTime);
        if (started_) { std::exchange(started_, {})(); }
    } else if (callback.status == serialapi::mode::done) {
        hasLearnt_ = true;
    } else if (callback.status == serialapi::mode::failed) {
        problem_ = "the other controller has failed with this one";
    }
}

void LearnModeJob::stop() {
    if (!hasStarted_) { leave(); }
}

void LearnModeJob::stepTimedOut() {
    if (isLeaving_) { return onLeft(CallEnd::noResponse); }
    problem_ = "the other controller does not get through";
    leave();
}

void LearnModeJob::leave() {
    if (isLeaving_) { return; }
    isLeaving_ = true;
    step(limits::stopTime);
    tell<SetLearnMode>({0, Byte{0}}, [this](CallEnd end) { onLeft(end); });
}

void LearnModeJob::onLeft(CallEnd end) {
    noStep();
    if (end != CallEnd::done) {
        host().resetModule("it does not leave learn mode");
        if (problem_.empty()) { problem_ = complaint(end); }
    }
    if (hasLearnt_) {
        return readModule(Restart::none, [this] { endDone(); });
    }
    if (isStopping()) { return endStopped(); }
    fail(problem_);
}

} // namespace zorv::controller
