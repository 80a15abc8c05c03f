// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/Job.h"

namespace zorv::controller {

char const* toString(JobState state) noexcept {
    switch (state) {
    case JobState::accepted: return "accepted";
    case JobState::running: return "running";
    case JobState::done: return "done";
    case JobState::failed: return "failed";
    case JobState::timedOut: return "timed out";
    case JobState::cancelled: return "cancelled";
    }
    return "";
}

char const* complaint(serialapi::CallEnd end) noexcept {
    using serialapi::CallEnd;
    switch (end) {
    case CallEnd::done: return "the module has done it";
    case CallEnd::refused: return "the module has refused it";
    case CallEnd::notAcknowledged: return "the module does not acknowledge";
    case CallEnd::noResponse: return "the module does not answer";
    case CallEnd::noCallback: return "the module does not call back";
    case CallEnd::badResponse: return "the module's answer cannot be read";
    case CallEnd::queueFull: return "too much waits for the module";
    case CallEnd::cancelled: return "it was cancelled";
    case CallEnd::closed: return "the link to the module was closed";
    }
    return "";
}

void Job::accept(JobHost& host, JobNumber number) {
    host_ = &host;
    number_ = number;
    if (!isPatient()) { deadline_ = now() + time_; }
}

void Job::begin() {
    state_ = JobState::running;
    if (isPatient()) { deadline_ = now() + time_; }
    run();
}

void Job::tick() {
    if (isOver()) { return; }
    if (deadline_ && now() >= *deadline_) {
        deadline_.reset();
        stopFor(JobState::timedOut, "timed out");
    }
    if (!isOver() && stepDeadline_ && now() >= *stepDeadline_) {
        stepDeadline_.reset();
        stepTimedOut();
    }
}

/// The first who says it decides how the job ends: a job that was cancelled does not time out afterwards.
void Job::stopFor(JobState why, std::string reason) {
    if (isOver() || isStopping()) { return; }
    stopState_ = why;
    stopReason_ = std::move(reason);
    if (state_ == JobState::accepted) { return endStopped(); }
    stop();
}

std::optional<TimePoint> Job::deadline() const noexcept {
    if (!deadline_ || (stepDeadline_ && *stepDeadline_ < *deadline_)) { return stepDeadline_; }
    return deadline_;
}

bool Job::moduleRestarted() {
    if (isOver() || state_ == JobState::accepted) { return false; }
    if (isReadingModule_ || restarted()) { return true; }
    if (isStopping()) {
        endStopped(); // a restart ends every mode as well
    } else {
        fail("the module has restarted");
    }
    return false;
}

void Job::readModule(Restart restart, std::function<void()> then) {
    isReadingModule_ = true;
    noStep();
    host().readModule(*this, restart, [this, then = std::move(then)](std::string const& problem) {
        isReadingModule_ = false;
        if (!problem.empty()) {
            host().resetModule("it cannot be read again");
            return fail("the module cannot be read again: " + problem);
        }
        then();
    });
}

std::function<void(serialapi::CallEnd)> Job::orFail() {
    return [this](serialapi::CallEnd end) {
        if (end != serialapi::CallEnd::done) { fail(complaint(end)); }
    };
}

void Job::end(JobState state, std::string reason) {
    if (isOver()) { return; }
    state_ = state;
    reason_ = std::move(reason);
    deadline_.reset();
    stepDeadline_.reset();
    for (auto const call : calls_) { host_->module().cancel(call); }
}

} // namespace zorv::controller
