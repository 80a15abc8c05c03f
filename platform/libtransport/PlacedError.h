// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <string>

namespace zorv {

/// An error whose text is fixed, and which knows apart from it where in the text it was found.
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
