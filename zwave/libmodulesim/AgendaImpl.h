// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/Limits.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>

namespace zorv::modulesim {

/// What is going to happen, in the order of time; of one time, in the order in which it was planned.
class Agenda {
public:
    using Work = std::function<void()>;
    using Entry = std::pair<serialapi::TimePoint, std::uint64_t>;

    /// Who forgets it: a module forgets what it was about to do when it restarts, the world around it does not.
    enum class Owner { module, world };

    Entry plan(serialapi::TimePoint time, Owner owner, Work work) {
        Entry const entry{time, ++last_};
        entries_.emplace(entry, std::make_pair(owner, std::move(work)));
        return entry;
    }

    void cancel(Entry const& entry) { entries_.erase(entry); }

    void forget(Owner owner) {
        for (auto entry = entries_.begin(); entry != entries_.end();) {
            entry = entry->second.first == owner ? entries_.erase(entry) : std::next(entry);
        }
    }

    std::optional<serialapi::TimePoint> deadline() const {
        if (entries_.empty()) { return std::nullopt; }
        return entries_.begin()->first.first;
    }

    /// Takes the next work off, if its time has come.
    std::optional<std::pair<serialapi::TimePoint, Work>> takeDue(serialapi::TimePoint now) {
        if (entries_.empty() || entries_.begin()->first.first > now) { return std::nullopt; }
        auto due = std::make_pair(entries_.begin()->first.first, std::move(entries_.begin()->second.second));
        entries_.erase(entries_.begin());
        return due;
    }

private:
    std::map<Entry, std::pair<Owner, Work>> entries_;
    std::uint64_t last_ = 0;
};

} // namespace zorv::modulesim
