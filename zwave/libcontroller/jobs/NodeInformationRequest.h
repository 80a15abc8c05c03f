// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

namespace zorv::controller {

/// Asks a node what it is; what it answers is in the node table when the job is done.
class ZORV_EXPORT NodeInformationRequest : public Job {
public:
    NodeInformationRequest(NodeId node, int priority, Milliseconds time)
        : Job(time), node_(node), priority_(priority) {}

    char const* name() const noexcept override { return "node information request"; }
    Lane lane() const noexcept override { return Lane::frames; }
    std::string objection(Network const& network) const override;
    int priority() const noexcept override { return priority_; }
    bool concerns(NodeId node) const override { return node == node_; }
    void updated(serialapi::ApplicationUpdate::Callback const& update) override;

protected:
    void run() override;
    void stepTimedOut() override { fail("the node does not answer"); }

private:
    NodeId node_;
    int priority_;
};

} // namespace zorv::controller
