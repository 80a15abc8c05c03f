// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Limits.h"
#include "zwave/libcontroller/Observer.h"

#include <map>
#include <optional>
#include <vector>

namespace zorv::controller {

/// The sleeping nodes that are awake, and when it is to be seen whether they still have to be.
class Sleepers {
public:
    bool isAwake(NodeId node) const noexcept { return awake_.count(node) != 0; }
    void wokeUp(NodeId node, TimePoint now) { awake_[node] = now + limits::idleTime; }
    void fellAsleep(NodeId node) { awake_.erase(node); }
    void clear() { awake_.clear(); }

    std::vector<NodeId> due(TimePoint now) const {
        std::vector<NodeId> nodes;
        for (auto const& [node, due] : awake_) {
            if (now >= due) { nodes.push_back(node); }
        }
        return nodes;
    }

    std::optional<TimePoint> deadline() const noexcept {
        std::optional<TimePoint> first;
        for (auto const& [node, due] : awake_) {
            if (!first || due < *first) { first = due; }
        }
        return first;
    }

private:
    std::map<NodeId, TimePoint> awake_;
};

} // namespace zorv::controller
