// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/jobs/MembershipJob.h"

namespace zorv::controller {

/// Waits for a node that wants to come into the network, and takes it in.
class ZORV_EXPORT Inclusion : public MembershipJob<serialapi::AddNodeToNetwork> {
public:
    explicit Inclusion(Milliseconds time, Progress progress = {}, bool networkWide = true)
        : MembershipJob(networkWide, time, std::move(progress)) {}

    char const* name() const noexcept override { return "inclusion"; }

protected:
    Milliseconds busyTime() const override;
    void conclude() override;
};

} // namespace zorv::controller
