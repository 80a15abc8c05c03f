// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/freshIdentity.h"

#include <sys/mman.h>
#include <sys/random.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <random>
#include <system_error>
#include <type_traits>

namespace zorv {

namespace {

constexpr std::size_t pageSize = 4096;

/// Distinguishes the generators of a process from those that it inherited: the kernel clears this page in the child of
/// a fork.
struct alignas(pageSize) ForkMark {
    std::atomic<unsigned int> generation;
};
static_assert(sizeof(ForkMark) == pageSize);

ForkMark mark;
std::atomic<unsigned int> lastGeneration; // goes on counting in a child

/// A number other than that of every ancestor; 0 where the kernel does not clear pages.
unsigned int generationOfThisProcess() {
    static bool const isCleared = ::madvise(&mark, sizeof mark, MADV_WIPEONFORK) == 0;
    if (!isCleared) { return 0; }
    auto known = mark.generation.load(std::memory_order_relaxed);
    if (known != 0) { return known; }
    auto const next = ++lastGeneration;
    return mark.generation.compare_exchange_strong(known, next) ? next : known;
}

/// Must not get a destructor: one that waits for a thread's end keeps the library in memory after dlclose.
struct Generator {
    std::mt19937_64 engine;
    unsigned int generation = 0;

    void seed() {
        std::array<std::seed_seq::result_type, 16> noise{};
        if (::getentropy(noise.data(), sizeof noise) != 0) {
            throw std::system_error(errno, std::generic_category(), "getentropy");
        }
        std::seed_seq sequence(noise.begin(), noise.end());
        engine.seed(sequence);
    }
};
static_assert(std::is_trivially_destructible_v<Generator>);

} // namespace

boost::uuids::uuid freshIdentity() {
    static thread_local Generator generator;
    auto const generation = generationOfThisProcess();
    if (generation == 0 || generator.generation != generation) {
        generator.seed();
        generator.generation = generation;
    }
    std::array<std::mt19937_64::result_type, 2> const bits{generator.engine(), generator.engine()};
    boost::uuids::uuid identity{};
    static_assert(sizeof bits == sizeof identity.data);
    std::memcpy(identity.data, bits.data(), sizeof bits);
    identity.data[6] = static_cast<unsigned char>((identity.data[6] & 0x0fU) | 0x40U); // version 4: random
    identity.data[8] = static_cast<unsigned char>((identity.data[8] & 0x3fU) | 0x80U); // variant of RFC 4122
    return identity;
}

} // namespace zorv
