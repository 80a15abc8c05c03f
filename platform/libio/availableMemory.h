// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <cstddef>

namespace zorv {

/// The memory that this process may use, in bytes: the least of what the machine has, what the process's own limit
/// allows (RLIMIT_AS), and what its control group does.
ZORV_EXPORT std::size_t availableMemory();

} // namespace zorv
