// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/jobs/Inclusion.h"

namespace zorv::controller {

/// Takes another controller in and makes it the primary one; the module's own becomes a secondary one.
class ZORV_EXPORT ControllerShift : public MembershipJob<serialapi::ControllerChange> {
public:
    explicit ControllerShift(Milliseconds time, Progress progress = {})
        : MembershipJob(false, time, std::move(progress)) {}

    char const* name() const noexcept override { return "controller change"; }
    std::string objection(Network const& network) const override;

protected:
    Byte startMode() const override { return serialapi::mode::controllerOnly; }
    Milliseconds busyTime() const override { return inclusionTime(network()); }
    void conclude() override;
};

} // namespace zorv::controller
