// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libzwaved/Controller.h"

#include <mutex>

namespace zorv {

/// The daemon of this process, for code that has no other way to it. It may be asked from any thread.
class ZORV_EXPORT Zwaved {
public:
    static Zwaved& instance();

    Zwaved(Zwaved const&) = delete;
    Zwaved& operator=(Zwaved const&) = delete;

    /// The controller that the daemon drives now; one without a network where no daemon runs.
    Controller controller() const;

    void controller(Controller const& controller);

private:
    Zwaved() = default;
    ~Zwaved() = default;

    mutable std::mutex mutex_;
    Controller controller_;
};

} // namespace zorv
