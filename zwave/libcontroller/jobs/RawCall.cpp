// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/RawCall.h"

namespace zorv::controller {

std::string RawCall::objection(Network const& network) const {
    if (parameters_.size() > serialapi::Frame::largestParameters) { return "the frame is too long"; }
    bool const isKnown = network.module.capabilities.functions.contains(function_);
    return isKnown ? "" : "the module does not know the function";
}

void RawCall::run() {
    serialapi::RawHandlers handlers;
    handlers.frame = [this](serialapi::Frame const& frame) {
        if (heard_) { heard_(frame); }
    };
    handlers.end = [this](serialapi::CallEnd end) {
        // Nobody can tell which callback is the last, so that to wait for another one in vain is no failure.
        bool const isGood = end == serialapi::CallEnd::done || end == serialapi::CallEnd::noCallback;
        isGood ? done() : fail(complaint(end));
    };
    callRaw(function_, parameters_, std::move(handlers));
}

} // namespace zorv::controller
