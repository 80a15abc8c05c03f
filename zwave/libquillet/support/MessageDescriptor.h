// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/TypeDescriptor.h"

#include <string>
#include <vector>

namespace zorv {

/// What a message class looks like on the wire.
struct MessageDescriptor {
    std::string serialName; ///< such as "zorv::PingMsg"
    std::string base;       ///< serial name of the direct base class
    std::vector<MemberDescriptor> members;
};

} // namespace zorv
