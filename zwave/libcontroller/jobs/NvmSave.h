// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/jobs/NvmJob.h"

namespace zorv::controller {

/// Reads the module's memory.
class ZORV_EXPORT NvmSave : public NvmJob {
public:
    explicit NvmSave(Milliseconds time, Progress progress = {}) : NvmJob(time, std::move(progress)) {}

    char const* name() const noexcept override { return "saving of the memory"; }

    /// All of the memory once the job is done.
    Bytes const& image() const noexcept { return image_; }

protected:
    void onOpen() override;
    void onRead(Bytes const& piece, bool isLast) override;
    void onClosed() override { done(); }
    void stop() override { close(); }

private:
    void readNext();

    Bytes image_;
    std::size_t piece_ = 0; ///< bytes to ask for at a time
};

} // namespace zorv::controller
