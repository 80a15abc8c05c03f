// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

namespace zorv::controller {

/// Has the module forget its network and begin a new one, and reads it again.
///
/// It cannot be stopped half way: told to end early, it ends so, but only after the module has been read.
class ZORV_EXPORT FactoryReset : public Job {
public:
    explicit FactoryReset(Milliseconds time) : Job(time) {}

    char const* name() const noexcept override { return "reset"; }

protected:
    void run() override;
    void stop() override {}
    bool restarted() override;

private:
    void readAgain(Restart restart);
};

} // namespace zorv::controller
