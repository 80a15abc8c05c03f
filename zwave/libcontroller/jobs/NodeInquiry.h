// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

#include <optional>

namespace zorv::controller {

/// Asks the module what a node is that has come into the network, and adds it to the table.
class ZORV_EXPORT NodeInquiry : public Job {
public:
    /// `information`, where it is there, is what the node says of itself.
    NodeInquiry(NodeId node, std::optional<serialapi::NodeInformation> information)
        : Job(limits::defaultJobTime), node_(node), information_(std::move(information)) {}

    char const* name() const noexcept override { return "node inquiry"; }
    Lane lane() const noexcept override { return Lane::module; }

protected:
    void run() override;

private:
    NodeId node_;
    std::optional<serialapi::NodeInformation> information_;
};

} // namespace zorv::controller
