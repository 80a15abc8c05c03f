// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libmodulesim/Fault.h"

#include <cstdint>
#include <optional>
#include <random>
#include <vector>

namespace zorv::modulesim {

/// The faults of a module, and how often each has struck. What one of them does depends on no other.
class FaultList {
public:
    FaultList(std::vector<Fault> const& faults, std::uint32_t seed);

    bool isEmpty() const noexcept { return entries_.empty(); }

    /// The module's start, from which faults count.
    void begin(serialapi::TimePoint now) noexcept { start_ = now; }

    /// The first fault that strikes on this occasion, or null; the occasion counts for all of that kind.
    Fault const* hit(Fault::Kind kind, Fault::Direction direction, std::optional<serialapi::Byte> function,
                     serialapi::TimePoint now);

    /// Whether a read up to `end` fails, in a memory of `size` bytes.
    bool hitsMemory(std::uint64_t end, std::uint64_t size, serialapi::TimePoint now);

    /// The next fault that waits for its time alone.
    std::optional<serialapi::TimePoint> deadline() const;
    Fault const* takeDue(serialapi::TimePoint now);

private:
    struct Entry {
        Fault fault;
        std::mt19937 random;
        std::uint32_t seen = 0;
        std::uint32_t struck = 0;
    };

    static bool waitsForTime(Fault const& fault) noexcept;
    bool strikes(Entry& entry, serialapi::TimePoint now) const;

    std::vector<Entry> entries_;
    std::optional<serialapi::TimePoint> start_;
};

} // namespace zorv::modulesim
