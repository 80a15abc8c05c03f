// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"
#include "zwave/libcontroller/Store.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zorv::daemon {

/// Keeps in a store what outlives the daemon; without a state folder, nothing.
///
/// What has changed is written in one go: at the latest when a client is told of a success.
class Recorder {
public:
    /// An empty folder stands for none; one that is not there is made. controller::StoreError where the store cannot be
    /// opened, std::runtime_error where the folder cannot be made.
    explicit Recorder(std::string const& folder);

    std::vector<Device> devices() const;

    void changed(Device const& device);
    void removed(ZwaveAddress const& address);
    void ended(controller::Job const& job);

    /// Writes what has changed; false where that fails, which is logged, and tried again with the next flush.
    bool flush();

private:
    void write();

    std::unique_ptr<controller::Store> store_;
    std::map<ZwaveAddress, std::optional<Device>> changes_; ///< none: the node is gone
    std::vector<controller::JobRecord> jobs_;
    bool hasFailed_ = false;
};

} // namespace zorv::daemon
