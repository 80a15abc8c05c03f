// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <chrono>

namespace zorv {

/// How often something may happen: so many times at once, and then so many times a second.
class Allowance {
public:
    using Clock = std::chrono::steady_clock;

    Allowance(double atOnce, double perSecond) noexcept : most_(atOnce), perSecond_(perSecond), left_(atOnce) {}

    /// Whether it may happen now; if so, it is counted.
    bool take(Clock::time_point now) noexcept {
        if (last_ != Clock::time_point()) {
            auto const seconds = std::chrono::duration<double>(now - last_).count();
            left_ = std::min(most_, left_ + seconds * perSecond_);
        }
        last_ = now;
        if (left_ < 1) { return false; }
        left_ -= 1;
        return true;
    }

private:
    double most_;
    double perSecond_;
    double left_;
    Clock::time_point last_;
};

} // namespace zorv
