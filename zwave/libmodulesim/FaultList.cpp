// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/FaultListImpl.h"

namespace zorv::modulesim {

using serialapi::Byte;
using serialapi::TimePoint;

namespace {

bool hasDirection(Fault::Kind kind) {
    return kind == Fault::Kind::loseFrame || kind == Fault::Kind::corruptFrame || kind == Fault::Kind::delayFrame;
}

} // namespace

FaultList::FaultList(std::vector<Fault> const& faults, std::uint32_t seed) {
    std::uint32_t number = 0;
    for (auto const& fault : faults) {
        std::seed_seq seeds{seed, ++number};
        entries_.push_back({fault, std::mt19937(seeds)});
    }
}

Fault const* FaultList::hit(Fault::Kind kind, Fault::Direction direction, std::optional<Byte> function, TimePoint now) {
    Fault const* first = nullptr;
    for (auto& entry : entries_) {
        auto const& fault = entry.fault;
        if (fault.kind != kind || waitsForTime(fault)) { continue; }
        if (hasDirection(kind) && fault.direction != direction) { continue; }
        if (fault.function && fault.function != function) { continue; }
        if (strikes(entry, now) && first == nullptr) { first = &fault; }
    }
    return first;
}

bool FaultList::hitsMemory(std::uint64_t end, std::uint64_t size, TimePoint now) {
    constexpr std::uint64_t whole = 100;
    bool isHit = false;
    for (auto& entry : entries_) {
        auto const& fault = entry.fault;
        if (fault.kind != Fault::Kind::stopMemory || end * whole <= fault.percent * size) { continue; }
        isHit = strikes(entry, now) || isHit;
    }
    return isHit;
}

bool FaultList::strikes(Entry& entry, TimePoint now) const {
    auto const& fault = entry.fault;
    if (!start_ || now < *start_ + fault.after || entry.struck == fault.times) { return false; }
    if (entry.seen < fault.skip) {
        ++entry.seen;
        return false;
    }
    // The library's distributions differ between implementations; the generator's numbers do not.
    if (fault.share < 1 && static_cast<double>(entry.random()) >= fault.share * 4294967296.0) { return false; }
    ++entry.struck;
    return true;
}

// ---- those that wait for their time alone

bool FaultList::waitsForTime(Fault const& fault) noexcept {
    bool const isOfModule =
        fault.kind == Fault::Kind::hang || fault.kind == Fault::Kind::restart || fault.kind == Fault::Kind::vanish;
    return isOfModule && !fault.function && fault.skip == 0;
}

std::optional<TimePoint> FaultList::deadline() const {
    std::optional<TimePoint> next;
    for (auto const& entry : entries_) {
        if (!start_ || entry.struck > 0 || !waitsForTime(entry.fault)) { continue; }
        auto const time = *start_ + entry.fault.after;
        if (!next || time < *next) { next = time; }
    }
    return next;
}

Fault const* FaultList::takeDue(TimePoint now) {
    for (auto& entry : entries_) {
        if (!start_ || entry.struck > 0 || !waitsForTime(entry.fault) || now < *start_ + entry.fault.after) {
            continue;
        }
        ++entry.struck;
        return &entry.fault;
    }
    return nullptr;
}

} // namespace zorv::modulesim
