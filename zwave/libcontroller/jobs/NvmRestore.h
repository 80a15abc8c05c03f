// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/jobs/NvmJob.h"

namespace zorv::controller {

/// Writes the module's memory, restarts the module and reads it again.
///
/// Half a memory is of no use: once the writing has begun the job goes on to its end, also where it was told to stop.
class ZORV_EXPORT NvmRestore : public NvmJob {
public:
    NvmRestore(Bytes image, Milliseconds time, Progress progress = {})
        : NvmJob(time, std::move(progress)), image_(std::move(image)) {}

    char const* name() const noexcept override { return "restoring of the memory"; }

protected:
    void onOpen() override;
    void onWritten() override;
    void onClosed() override;
    void stop() override {
        if (!isWriting_) { close(); }
    }
    bool goesOn() const noexcept override { return isWriting_; }

    void image(Bytes image) { image_ = std::move(image); }

private:
    void writeNext();

    Bytes image_;
    std::size_t written_ = 0;
    std::size_t writing_ = 0; ///< bytes that are under way
    bool isWriting_ = false;
};

} // namespace zorv::controller
