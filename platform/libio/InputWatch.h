// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <functional>
#include <memory>

namespace zorv {

class EventLoop;

/// Calls its work once, when there is something to read from a descriptor or its other side has closed it, unless the
/// watch is destroyed before.
///
/// The descriptor stays as it is: where others share it, as programs do a terminal, it still blocks for them.
class ZORV_EXPORT InputWatch {
public:
    /// Throws std::system_error if the descriptor is none that can be waited for, as a file on a disk is.
    InputWatch(EventLoop& loop, int descriptor, std::function<void()> work);
    ~InputWatch();

    InputWatch(InputWatch const&) = delete;
    InputWatch& operator=(InputWatch const&) = delete;

private:
    struct Watch;

    std::shared_ptr<Watch> watch_;
};

} // namespace zorv
