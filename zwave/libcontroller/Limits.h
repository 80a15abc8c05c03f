// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/Limits.h"

#include <algorithm>
#include <cstddef>

// Every time and every bound of a controller, by name.

namespace zorv::controller {

using serialapi::Milliseconds;
using serialapi::TimePoint;

namespace limits {

// ---- jobs
constexpr Milliseconds defaultJobTime{180'000};
constexpr Milliseconds longestJobTime{3'600'000};
constexpr std::size_t waitingFrames = 1024; ///< to nodes, on top of the one under way
constexpr std::size_t sleepersFrames = 64;  ///< of them, to nodes that sleep
constexpr std::size_t waitingInterviews = 256;

/// A job's time as asked for: 0 and less stand for the default.
constexpr Milliseconds jobTime(Milliseconds asked) {
    return asked.count() <= 0 ? defaultJobTime : std::min(asked, longestJobTime);
}

// ---- the module
constexpr Milliseconds restartTime{1500};    ///< after a soft reset, where the module does not say that it has started
constexpr Milliseconds loaderTime{30'000};   ///< for which it may be silent while it takes up other firmware
constexpr Milliseconds startUpPause{10'000}; ///< before a module that does not answer is asked again
constexpr Milliseconds stopTime{5000};       ///< a mode's last callback after its stop

// ---- frames to nodes
constexpr unsigned int refusalsOfAFrame = 5; ///< the module's queue may be full for a while
constexpr Milliseconds pauseAfterRefusal{500};
constexpr Milliseconds abortTime{5000};    ///< the callback of a frame that was aborted
constexpr Milliseconds answerTime{10'000}; ///< of a node to a question
constexpr Milliseconds idleTime{1000};     ///< a node that is awake may sleep again where nothing came up so long

} // namespace limits

} // namespace zorv::controller
