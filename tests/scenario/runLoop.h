// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libio/EventLoop.h"

#include <gtest/gtest.h>

#include <chrono>

namespace scenario {

/// Runs the loop until the test's own handlers stop it, or fails.
inline void runLoop(zorv::EventLoop& loop) {
    zorv::Timer const guard(loop, std::chrono::seconds(30), [&loop] {
        ADD_FAILURE() << "nothing happens";
        loop.stop();
    });
    loop.run();
}

} // namespace scenario
