// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

namespace zorv::controller {

/// Has a node look for its neighbours anew. The module cannot be told to stop that: a job that ends early only waits no
/// longer.
class ZORV_EXPORT NeighborUpdate : public Job {
public:
    /// `started`, where it is given, hears that the node has begun.
    NeighborUpdate(NodeId node, Milliseconds time, std::function<void()> started = {})
        : Job(time), node_(node), started_(std::move(started)) {}

    char const* name() const noexcept override { return "neighbour update"; }
    std::string objection(Network const& network) const override;

protected:
    void run() override;

private:
    NodeId node_;
    std::function<void()> started_;
};

} // namespace zorv::controller
