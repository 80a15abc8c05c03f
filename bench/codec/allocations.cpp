// SPDX-License-Identifier: Apache-2.0
#include "bench/codec/allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local bench::Allocations counts{0, 0};

} // namespace

namespace bench {

Allocations allocations() noexcept { return counts; }

} // namespace bench

// The other forms of the library are defined through these two, but for types of more than usual alignment.

void* operator new(std::size_t size) {
    ++counts.taken;
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) { return memory; }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    if (memory != nullptr) { ++counts.returned; }
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
