// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/Inclusion.h"

#include "zwave/libcontroller/jobs/NodeInquiry.h"

namespace zorv::controller {

/// The new node looks for its neighbours among all that are there.
Milliseconds inclusionTime(Network const& network) {
    constexpr Milliseconds base{76'000};
    constexpr Milliseconds forEachListening{217};
    constexpr Milliseconds forEachFrequentlyListening{3517};
    auto time = base;
    for (auto const& [node, device] : network.nodes.devices()) {
        if (device.isListening()) { time += forEachListening; }
        if (device.isFrequentlyListening()) { time += forEachFrequentlyListening; }
    }
    return time;
}

void Inclusion::conclude() {
    if (node() == 0 || hasProblem()) { return settled(); }
    auto const inquiry = std::make_shared<NodeInquiry>(node(), information());
    host().submitPart(*this, inquiry, [this, inquiry] {
        if (inquiry->state() != JobState::done) { return fail(inquiry->reason()); }
        settled();
    });
}

} // namespace zorv::controller
