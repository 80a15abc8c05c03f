// SPDX-License-Identifier: Apache-2.0
#include "tests/memory/Allocations.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace {

thread_local std::size_t largestAllocation = SIZE_MAX;
thread_local std::size_t grantsLeft = SIZE_MAX;   // before the refusals begin
thread_local std::size_t refusalsLeft = SIZE_MAX; // before grants begin again
thread_local bool refused = false;
std::atomic<long> liveCount{0};
thread_local long liveOfThread = 0;

bool isGranted(std::size_t size) {
    if (size > largestAllocation) { return false; }
    if (grantsLeft > 0) {
        if (grantsLeft != SIZE_MAX) { --grantsLeft; }
        return true;
    }
    if (refusalsLeft == 0) { return true; }
    if (refusalsLeft != SIZE_MAX) { --refusalsLeft; }
    refused = true;
    return false;
}

void refuseAfter(std::size_t granted, std::size_t refusals) {
    grantsLeft = granted;
    refusalsLeft = refusals;
    refused = false;
}

void release(void* memory) {
    if (memory == nullptr) { return; }
    liveCount.fetch_sub(1, std::memory_order_relaxed);
    --liveOfThread;
    std::free(memory);
}

} // namespace

// Out of line: a compiler that sees only one of new and delete warns of a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    if (!isGranted(size)) { return nullptr; }
    auto* const memory = std::malloc(size > 0 ? size : 1);
    if (memory != nullptr) {
        liveCount.fetch_add(1, std::memory_order_relaxed);
        ++liveOfThread;
    }
    return memory;
}

[[gnu::noinline]] void* operator new(std::size_t size) {
    auto* const memory = operator new(size, std::nothrow);
    if (memory == nullptr) { throw std::bad_alloc(); }
    return memory;
}

[[gnu::noinline]] void operator delete(void* memory) noexcept { release(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { release(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::nothrow_t const&) noexcept { release(memory); }

namespace zorv {

long Allocations::live() noexcept { return liveCount.load(std::memory_order_relaxed); }
long Allocations::liveHere() noexcept { return liveOfThread; }

Allocations::Limit::Limit(std::size_t limit) noexcept { largestAllocation = limit; }
Allocations::Limit::~Limit() { largestAllocation = SIZE_MAX; }

Allocations::Count::Count(std::size_t granted) noexcept { refuseAfter(granted, SIZE_MAX); }
Allocations::Count::~Count() { grantsLeft = SIZE_MAX; }

/// True with the last that is granted already: what happens to need no more has nothing to spare.
bool Allocations::Count::ranOut() noexcept { return grantsLeft == 0; }

Allocations::Gap::Gap(std::size_t granted, std::size_t toRefuse) noexcept { refuseAfter(granted, toRefuse); }
Allocations::Gap::~Gap() { grantsLeft = SIZE_MAX; }

bool Allocations::Gap::wasReached() noexcept { return refused; }

Allocations::Pardon::Pardon() noexcept : grantsLeft_(std::exchange(grantsLeft, SIZE_MAX)) {}
Allocations::Pardon::~Pardon() { grantsLeft = grantsLeft_; }

} // namespace zorv
