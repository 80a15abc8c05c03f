// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

namespace zorv::controller {

/// Removes a node that cannot be reached any more, or has a new one take its place.
class ZORV_EXPORT FailedNode : public Job {
public:
    enum class Action { remove, replace };

    /// With `force` the node is not tried before. `ready`, where it is given, hears that a new node may come now.
    FailedNode(Action action, NodeId node, bool force, Milliseconds time, std::function<void()> ready = {})
        : Job(time), action_(action), node_(node), force_(force), ready_(std::move(ready)) {}

    char const* name() const noexcept override {
        return action_ == Action::remove ? "removal of a failed node" : "replacement of a failed node";
    }
    std::string objection(Network const& network) const override;

    /// Whether nothing was done because the node works.
    bool doesNodeWork() const noexcept { return doesNodeWork_; }

protected:
    void run() override;
    void stop() override;

private:
    void askModule();
    void begin();
    void remove();
    void replace();
    void onStart(serialapi::FailedNodeStart const& start);
    void nodeWorks();
    void onReplaced();

    Action action_;
    NodeId node_;
    bool force_;
    std::function<void()> ready_;
    bool isReplacing_ = false;
    bool doesNodeWork_ = false;
};

} // namespace zorv::controller
