// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libmodulesim/FamiliesImpl.h"
#include "zwave/libmodulesim/TimingImpl.h"

#include <algorithm>
#include <memory>

// Nodes that do not answer any more are removed, or replaced.

namespace zorv::modulesim {

namespace api = serialapi;
namespace mode = serialapi::mode;

namespace {

// ---- why a job does not begin
constexpr Byte notPrimary = 0x02;
constexpr Byte noCallback = 0x04;
constexpr Byte notFailed = 0x08;
constexpr Byte busy = 0x10;

// ---- how it ends
constexpr Byte nodeWorks = 0;
constexpr Byte removed = 1;
constexpr Byte readyForReplacement = 3;
constexpr Byte replaced = 4;

class FailedNodes {
public:
    explicit FailedNodes(Core& core) : core_(core) {}

    bool isFailed(NodeId node) const {
        return std::find(core_.failed.begin(), core_.failed.end(), node) != core_.failed.end();
    }

    Byte remove(api::NodeJob const& job) {
        return begin(job, NetworkMode::failedNode, [this, job] {
            core_.exclude(job.node);
            core_.mode = NetworkMode::none;
            core_.callBack<api::RemoveFailedNode>({job.callbackId, removed});
        });
    }

    Byte replace(api::NodeJob const& job) {
        return begin(job, NetworkMode::replacing, [this, job] {
            job_ = job;
            core_.callBack<api::ReplaceFailedNode>({job.callbackId, readyForReplacement});
            lookOut();
        });
    }

    /// Has the next node that joins take the place of the failed one.
    void lookOut() {
        if (job_.node == 0 || core_.joining.empty()) { return; }
        plan(core_.joining.front().second + timing::nodeIntroduces, [this] {
            auto* const joiner = core_.joining.front().first;
            core_.joining.pop_front();
            auto const job = std::exchange(job_, {});
            core_.exclude(job.node);
            core_.include(*joiner, job.node);
            core_.membership.nodes[job.node].neighbours = core_.neighboursOf(job.node);
            core_.mode = NetworkMode::none;
            core_.callBack<api::ReplaceFailedNode>({job.callbackId, replaced});
        });
    }

    /// By the stop of an inclusion, which is told of the old node.
    void stopReplacing(Byte callbackId) {
        core_.cancel(pending_);
        auto const job = std::exchange(job_, {});
        core_.mode = NetworkMode::none;
        core_.callBack<api::AddNodeToNetwork>({callbackId, mode::done, job.node, {}});
    }

    void forget() { job_ = {}; }

private:
    void plan(Milliseconds delay, Agenda::Work work) {
        core_.cancel(pending_);
        pending_ = core_.after(delay, std::move(work));
    }

    /// The module tries the node once more; `goOn` follows where that fails again. Gives why it does not even begin.
    template <class GoOn> Byte begin(api::NodeJob const& job, NetworkMode networkMode, GoOn goOn) {
        if (!core_.membership.assignsIds()) { return notPrimary; }
        if (job.callbackId == 0) { return noCallback; }
        if (!isFailed(job.node)) { return notFailed; }
        if (core_.mode != NetworkMode::none) { return busy; }
        core_.mode = networkMode;
        auto* const node = core_.node(job.node);
        auto const outcome = node != nullptr ? node->reach(core_.time(), core_.described.retransmission)
                                             : SimulatedNode::Outcome{false, core_.described.retransmission};
        plan(outcome.delay, [this, job, networkMode, outcome, goOn] {
            if (!outcome.isAcknowledged) { return goOn(); }
            core_.noteReached(job.node, true);
            core_.mode = NetworkMode::none;
            api::StatusCallback const works{job.callbackId, nodeWorks};
            networkMode == NetworkMode::replacing ? core_.callBack<api::ReplaceFailedNode>(works)
                                                  : core_.callBack<api::RemoveFailedNode>(works);
        });
        return 0;
    }

    Core& core_;
    api::NodeJob job_; ///< a replacement that waits for the new node
    Agenda::Entry pending_;
};

} // namespace

void serveFailedNodes(Core& core) {
    auto const nodes = std::make_shared<FailedNodes>(core);
    core.onReset([nodes] { nodes->forget(); });
    core.hooks.replacerCame = [nodes] { nodes->lookOut(); };
    core.hooks.stopReplacing = [nodes](Byte callbackId) { nodes->stopReplacing(callbackId); };
    core.serve<api::IsFailedNode>([nodes](api::OneNode const& request) {
        return api::Setting{nodes->isFailed(request.node) ? Byte{1} : Byte{0}};
    });
    core.serve<api::RemoveFailedNode>(
        [nodes](api::NodeJob const& job) { return api::FailedNodeStart{nodes->remove(job)}; });
    core.serve<api::ReplaceFailedNode>(
        [nodes](api::NodeJob const& job) { return api::FailedNodeStart{nodes->replace(job)}; });
}

} // namespace zorv::modulesim
