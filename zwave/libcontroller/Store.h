// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libzorvshared/Device.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace zorv::controller {

/// The store cannot be opened, read or written; the text names the file and says what is the matter.
class ZORV_EXPORT StoreError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A job that is over, as the log of jobs keeps it.
struct JobRecord {
    std::string name;
    std::string state;                                ///< how it ended
    std::string reason;                               ///< why, where it did not end well
    std::chrono::system_clock::time_point ended = {}; ///< to the millisecond
};

/// A client that has said who it is.
struct AgentRecord {
    std::string uuid;
    std::string room;
    std::string device;
    std::string driver;
};

/// What outlives the process, in one SQLite file.
///
/// What a call has written is on the disk when it returns, and survives the sudden end of the process. A file that is
/// damaged, of a newer version, or of something else is refused and left as it is; so is one that another process has open.
class ZORV_EXPORT Store {
public:
    /// Opens the file, or makes it; one of an older version is brought up to this one.
    explicit Store(std::string const& file);
    ~Store();

    /// Writes the node's record; an earlier one of the same address is replaced.
    void save(Device const& device);
    void remove(ZwaveAddress const& address);

    /// By home id and node id.
    std::vector<Device> devices() const;

    void save(AgentRecord const& agent);
    std::vector<AgentRecord> agents() const; ///< by their UUIDs

    /// Remembers a state by its name.
    void remember(std::string const& name, std::string const& value);
    std::optional<std::string> recall(std::string const& name) const;

    /// Has all that `work` writes written, or, where it throws, nothing of it.
    void together(std::function<void()> const& work);

    /// Adds to the log of jobs, which keeps the latest 1,000.
    void log(JobRecord const& job);
    std::vector<JobRecord> jobs(std::size_t most) const; ///< the latest first

private:
    class Database;
    std::unique_ptr<Database> database_;
};

} // namespace zorv::controller
