// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <string>

namespace zorv {

/// An error with a fixed text, which also knows the place of the bad value.
class ZORV_EXPORT PlacedError {
public:
    /// The way from the root to the bad value, such as "devices_[2]"; empty for the root, and where it is not known.
    virtual std::string const& place() const noexcept = 0;

    virtual ~PlacedError();

protected:
    PlacedError() = default;
    PlacedError(PlacedError const&) = default;
    PlacedError& operator=(PlacedError const&) = default;
};

} // namespace zorv
