// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/FactoryReset.h"

#include "zwave/libcontroller/jobs/StartUp.h"

namespace zorv::controller {

using serialapi::CallEnd;
using serialapi::SetDefault;

namespace {

constexpr Milliseconds eraseTime{10'000};
constexpr Byte firstThatRestarts = 7; // chip type: the 700 series

} // namespace

void FactoryReset::run() {
    serialapi::CallHandlers<SetDefault> handlers;
    handlers.end = [this](CallEnd end) {
        if (isReading_) { return; }
        if (end != CallEnd::done) { return fail(complaint(end)); }
        // Newer modules restart now, and say so.
        if (network().module.chipType >= firstThatRestarts) { return step(limits::restartTime); }
        readAgain();
    };
    call<SetDefault>({0}, std::move(handlers), eraseTime);
}

bool FactoryReset::restarted() {
    if (!isReading_) { readAgain(); }
    return true;
}

void FactoryReset::readAgain() {
    noStep();
    isReading_ = true;
    auto const startUp = std::make_shared<StartUp>();
    host().submitPart(*this, startUp, [this, startUp] { onRead(*startUp); });
}

/// Some modules call back and have erased nothing.
void FactoryReset::onRead(Job const& startUp) {
    if (isStopping()) { return endStopped(); }
    if (startUp.state() != JobState::done) { return fail(startUp.reason()); }
    if (network().nodes.devices().size() > 1) { return fail("the module has kept its nodes"); }
    done();
}

} // namespace zorv::controller
