// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

#include <cstddef>

namespace zorv::controller {

/// Gives a module other firmware, and then asks it anew who it is.
///
/// A module of the 500 series gets it written beside what runs, checks it, and takes it up when it is restarted. One of the
/// 700 or 800 series is told to enter its loader, which takes it.
///
/// Once the first byte is written the job goes on to its end, also where it was told to stop.
class ZORV_EXPORT FirmwareUpdate : public Job {
public:
    using Progress = std::function<void(unsigned int percent)>;

    FirmwareUpdate(Bytes image, Milliseconds time, Progress progress = {})
        : Job(time), image_(std::move(image)), progress_(std::move(progress)) {}

    char const* name() const noexcept override { return "firmware update"; }
    std::string objection(Network const& network) const override;

protected:
    void run() override;
    void stop() override;

private:
    using Nvm = serialapi::FirmwareUpdateNvm;
    enum class Stage { asking, writing, entering, loading };

    void write();
    void ask(Nvm::Request const& request, std::function<void(Nvm::Response const&)> take);
    void prepare();
    void writeNext();
    void check();
    void takeUp();
    void giveUp(std::string const& problem);

    void enterLoader();
    void onLoading(unsigned int percent);
    void onLoaded(serialapi::LoadResult const& result);

    void report(unsigned int percent);

    Bytes image_;
    Progress progress_;
    std::size_t written_ = 0;
    unsigned int percent_ = 0;
    Stage stage_ = Stage::asking;
};

} // namespace zorv::controller
