// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

namespace zorv::controller {

/// Tells a node, or all of them, what the module is.
class ZORV_EXPORT NodeInformationFrame : public Job {
public:
    /// Node 255: all.
    NodeInformationFrame(NodeId node, Byte options, Milliseconds time) : Job(time), node_(node), options_(options) {}

    char const* name() const noexcept override { return "node information frame"; }
    Lane lane() const noexcept override { return Lane::frames; }
    std::string objection(Network const& network) const override;

protected:
    void run() override;

private:
    NodeId node_;
    Byte options_;
};

} // namespace zorv::controller
