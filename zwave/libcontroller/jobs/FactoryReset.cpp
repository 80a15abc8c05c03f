// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/FactoryReset.h"

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
        if (isReadingModule()) { return; }
        if (end != CallEnd::done) { return fail(complaint(end)); }
        // Newer modules restart now, and say so.
        readAgain(network().module.chipType >= firstThatRestarts ? Restart::ofItself : Restart::none);
    };
    call<SetDefault>({0}, std::move(handlers), eraseTime);
}

bool FactoryReset::restarted() {
    readAgain(Restart::none);
    return true;
}

/// Some modules call back and have erased nothing.
void FactoryReset::readAgain(Restart restart) {
    readModule(restart, [this] {
        if (!isStopping() && network().nodes.devices().size() > 1) { return fail("the module has kept its nodes"); }
        endDone();
    });
}

} // namespace zorv::controller
