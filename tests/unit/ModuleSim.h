// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/SimulatedLink.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zorv::modulesim {

namespace api = serialapi;

inline std::string text(Bytes const& bytes) {
    std::string text;
    for (auto const byte : bytes) {
        constexpr char const* digits = "0123456789abcdef";
        text += text.empty() ? "" : " ";
        text += digits[byte >> 4U];
        text += digits[byte & 0x0FU];
    }
    return text;
}

/// Node 2 listens, 3 is a lock, 4 sleeps, 5 is dead.
inline SimulatedNetwork smallNetwork(Generation generation) {
    SimulatedNetwork network;
    network.generation = generation;
    network.nodes.resize(4);
    for (std::size_t i = 0; i < network.nodes.size(); ++i) { network.nodes[i].id = static_cast<NodeId>(i + 2); }
    network.nodes[1].kind = NodeKind::frequentlyListening;
    network.nodes[2].kind = NodeKind::sleeping;
    network.nodes[2].wakeUpSeconds = 60;
    network.nodes[2].commandClasses = {0x72, 0x80, 0x84, 0x86};
    network.nodes[3].dead = true;
    return network;
}

/// A link, and what the host hears that it did not call for: "04 ..." for a frame of function 4.
struct HeardLink : SimulatedLink {
    explicit HeardLink(SimulatedNetwork network) : SimulatedLink(std::move(network)) {
        host.unsolicited([this](api::Frame const& frame) {
            Bytes bytes{frame.function};
            bytes.insert(bytes.end(), frame.parameters.begin(), frame.parameters.end());
            heard.push_back(text(bytes));
        });
    }

    /// Calls a function and lets `time` pass; each callback as "status", or "status:node" where it names one, and the end.
    template <class F> std::string follow(typename F::Request const& request, Milliseconds time) {
        std::string story;
        api::CallHandlers<F> handlers;
        handlers.callback = [&story](typename F::Callback const& callback) { story += tell(callback) + ' '; };
        handlers.end = [&story](api::CallEnd end) {
            story += end == api::CallEnd::done ? "done" : "end " + std::to_string(static_cast<int>(end));
        };
        auto const call = host.call<F>(request, std::move(handlers), now);
        passes(time);
        host.cancel(call);
        host.tick(now);
        return story;
    }

    static std::string tell(api::JobCallback const&) { return "called"; }
    static std::string tell(api::StatusCallback const& callback) { return std::to_string(callback.status); }
    static std::string tell(api::TransmitCallback const& callback) { return std::to_string(callback.status); }
    static std::string tell(api::ModeCallback const& callback) {
        return std::to_string(callback.status) + ':' + std::to_string(callback.node);
    }

    std::vector<std::string> heard;
};

using Ids = std::vector<NodeId>;
using Texts = std::vector<std::string>;

} // namespace zorv::modulesim
