// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace bench {

/// What the calling thread has taken from and given back to the heap through operator new and delete.
struct Allocations {
    long taken;
    long returned;
};

Allocations allocations() noexcept;

} // namespace bench
