// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

namespace zorv::controller {

/// Asks the network's update controller for what has changed; the changes come by themselves, as the nodes that they are
/// about.
class ZORV_EXPORT NetworkUpdate : public Job {
public:
    explicit NetworkUpdate(Milliseconds time) : Job(time) {}

    char const* name() const noexcept override { return "network update"; }
    std::string objection(Network const& network) const override;

    /// How the update controller has answered: 0 done, 1 abort, 2 wait, 3 disabled, 4 overflow; nothing before it has.
    std::optional<Byte> status() const noexcept { return status_; }

protected:
    void run() override;

private:
    std::optional<Byte> status_;
};

} // namespace zorv::controller
