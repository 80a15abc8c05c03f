// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <new>
#include <thread>

namespace zorv {

/// Does what must not be left undone; where memory runs out for it, again and again for about a second.
///
/// `work` begins anew each time, so it has to bear that. Errors: std::bad_alloc when the second is over.
template <class Work> void insist(Work const& work) {
    constexpr int atOnce = 4;
    constexpr int most = 104;
    for (int tries = 1; tries < most; ++tries) {
        try {
            return work();
        } catch (std::bad_alloc const&) {
            if (tries >= atOnce) { std::this_thread::sleep_for(std::chrono::milliseconds(10)); }
        }
    }
    work();
}

/// Does what may be left out where memory runs out for it.
template <class Work> void ifMemoryAllows(Work const& work) noexcept {
    try {
        work();
    } catch (std::bad_alloc const&) {} // NOLINT(bugprone-empty-catch): left out
}

} // namespace zorv
