// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

namespace zorv::controller {

/// Sends the module a request as its bytes are given, and hands on what the module says to it.
///
/// What else is under way does not hinder it; whoever uses it has to know what he does.
class ZORV_EXPORT RawCall : public Job {
public:
    using Heard = std::function<void(serialapi::Frame const& frame)>;

    RawCall(Byte function, Bytes parameters, Heard heard)
        : Job(limits::defaultJobTime),
          function_(function),
          parameters_(std::move(parameters)),
          heard_(std::move(heard)) {}

    char const* name() const noexcept override { return "raw call"; }
    Lane lane() const noexcept override { return Lane::module; }
    std::string objection(Network const& network) const override;

protected:
    void run() override;

private:
    Byte function_;
    Bytes parameters_;
    Heard heard_;
};

} // namespace zorv::controller
