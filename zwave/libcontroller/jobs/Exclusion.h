// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/jobs/MembershipJob.h"

namespace zorv::controller {

/// Waits for a node that is to leave its network, this one or another, and takes it out.
class ZORV_EXPORT Exclusion : public MembershipJob<serialapi::RemoveNodeFromNetwork> {
public:
    explicit Exclusion(Milliseconds time, Progress progress = {}, bool networkWide = true)
        : MembershipJob(networkWide, time, std::move(progress)) {}

    char const* name() const noexcept override { return "exclusion"; }

protected:
    Milliseconds busyTime() const override { return Milliseconds(14'000); }
    void conclude() override;
};

} // namespace zorv::controller
