// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>

namespace zorv::fuzz {

/// As long as it lives, the steady clock of the whole process stands still unless it is moved, and Asio's timers go by it.
class FakeClock {
public:
    FakeClock();
    ~FakeClock();

    FakeClock(FakeClock const&) = delete;
    FakeClock& operator=(FakeClock const&) = delete;

    static void move(std::chrono::milliseconds time);
    static std::chrono::milliseconds now();
};

} // namespace zorv::fuzz
