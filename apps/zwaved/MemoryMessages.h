// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/Context.h"

#include "zwave/libcontroller/jobs/NvmSave.h"
#include "zwave/libquillet/ManageNvmMsg.h"
#include "zwave/libquillet/NvmOpEvt.h"

#include <chrono>
#include <memory>
#include <optional>

namespace zorv::daemon {

/// The messages about the module's memory.
///
/// A restore and a clear have to be authorized by the same client, at most a minute before, each for itself.
class MemoryMessages {
public:
    explicit MemoryMessages(Context const& context);

private:
    using Request = boost::shared_ptr<ManageNvmMsg>;

    struct Permit {
        PeerId client;
        std::chrono::steady_clock::time_point until;
    };

    void manage(Request const& request, PeerId from);
    void say(Request const& request, PeerId from, ZResult::Enum result, unsigned int percent = 0);
    void authorize(Request const& request, PeerId from);
    bool takePermit(Request const& request, PeerId from);
    void save(Request const& request, PeerId from);
    void validate(Request const& request, PeerId from);
    void restore(Request const& request, PeerId from);
    void clear(Request const& request, PeerId from);
    void write(Request const& request, PeerId from, NvmOp::Enum operation,
               std::shared_ptr<controller::NvmJob> const& job);
    controller::NvmJob::Progress progressOf(Request const& request, PeerId from);

    Context context_;
    std::optional<Permit> permit_;
};

} // namespace zorv::daemon
