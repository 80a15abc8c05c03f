// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/jobs/NvmRestore.h"

namespace zorv::controller {

/// Overwrites all of the module's memory with the value of erased bytes; the module then begins with a memory of its own.
class ZORV_EXPORT NvmClear : public NvmRestore {
public:
    explicit NvmClear(Milliseconds time, Progress progress = {}) : NvmRestore({}, time, std::move(progress)) {}

    char const* name() const noexcept override { return "clearing of the memory"; }

protected:
    void onOpen() override {
        constexpr Byte erased = 0xFF;
        image(Bytes(size(), erased));
        NvmRestore::onOpen();
    }
};

} // namespace zorv::controller
