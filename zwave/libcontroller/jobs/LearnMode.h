// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/LearnMode.h"
#include "zwave/libcontroller/Job.h"

namespace zorv::controller {

/// The module lets another controller take it into a network or out of one, and is then read again.
///
/// Once the other controller has begun, it is not stopped before it is through.
class ZORV_EXPORT LearnModeJob : public Job {
public:
    /// `started`, where it is given, hears that another controller has begun.
    LearnModeJob(LearnMode::Enum mode, Milliseconds time, std::function<void()> started = {})
        : Job(time), mode_(mode), started_(std::move(started)) {}

    char const* name() const noexcept override { return "learn mode"; }
    bool sharesRadio() const noexcept override { return !hasStarted_; }
    std::string objection(Network const& network) const override;

protected:
    void run() override;
    void stop() override;
    void stepTimedOut() override;

private:
    void onCallback(serialapi::ModeCallback const& callback);
    void leave();
    void onLeft(serialapi::CallEnd end);

    LearnMode::Enum mode_;
    std::function<void()> started_;
    bool hasStarted_ = false;
    bool isLeaving_ = false;
    bool hasLearnt_ = false;
    std::string problem_;
};

} // namespace zorv::controller
