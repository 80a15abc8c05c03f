// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libmodulesim/SimulatedModule.h"
#include "zwave/libserialapi/Module.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace zorv::modulesim {

/// A host and a simulated module on a line between them, and a clock that the test moves.
struct SimulatedLink {
    explicit SimulatedLink(SimulatedNetwork network) : module(std::move(network)) {
        module.start();
        host.start();
        passes(Milliseconds(0));
    }

    /// Lets time pass, from one deadline to the next, and carries what is said.
    void passes(Milliseconds time) {
        auto const end = now + time;
        exchange();
        for (auto next = nextDeadline(); next && *next <= end; next = nextDeadline()) {
            now = std::max(now, *next);
            host.tick(now);
            module.tick(now);
            exchange();
        }
        now = end;
    }

    /// Calls a function; its response, where one comes within ten seconds.
    template <class F> std::optional<typename F::Response> ask(typename F::Request const& request = {}) {
        std::optional<typename F::Response> answer;
        serialapi::CallHandlers<F> handlers;
        handlers.response = [&answer](typename F::Response const& response) { answer = response; };
        auto const call = host.call<F>(request, std::move(handlers), now);
        auto const end = now + Milliseconds(10000);
        exchange();
        while (!answer && now < end) {
            auto const next = nextDeadline();
            if (!next || *next > end) { break; }
            passes(std::max(Milliseconds(0), std::chrono::duration_cast<Milliseconds>(*next - now)));
        }
        host.cancel(call);
        host.tick(now);
        return answer;
    }

    std::optional<TimePoint> nextDeadline() const {
        auto const ours = host.deadline();
        auto const theirs = module.deadline();
        if (!ours || (theirs && *theirs < *ours)) { return theirs; }
        return ours;
    }

    void exchange() {
        while (true) {
            auto const said = host.takeOutput();
            if (!said.empty()) { module.receive(said, now); }
            auto const answered = module.takeOutput();
            if (!answered.empty()) { host.receive(answered, now); }
            if (said.empty() && answered.empty()) { return; }
        }
    }

    serialapi::Module host;
    SimulatedModule module;
    TimePoint now{};
};

} // namespace zorv::modulesim
