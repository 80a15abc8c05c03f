// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/jobs/MembershipJob.h"

namespace zorv::controller {

/// How long the module may be busy with a node that comes in.
ZORV_EXPORT Milliseconds inclusionTime(Network const& network);

/// Waits for a node that wants to come into the network, and takes it in.
class ZORV_EXPORT Inclusion : public MembershipJob<serialapi::AddNodeToNetwork> {
public:
    explicit Inclusion(Milliseconds time, Progress progress = {}, bool networkWide = true)
        : MembershipJob(networkWide, time, std::move(progress)) {}

    char const* name() const noexcept override { return "inclusion"; }

protected:
    Milliseconds busyTime() const override { return inclusionTime(network()); }
    void conclude() override;
};

} // namespace zorv::controller
