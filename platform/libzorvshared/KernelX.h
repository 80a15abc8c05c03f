// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

namespace zorv {

/// Questions to the operating system.
class ZORV_EXPORT KernelX {
public:
    KernelX() = delete;

    /// Number of the machine's architecture: 1 is 32-bit x86, 2 is 64-bit x86, 3 is 32-bit Arm, 4 is 64-bit Arm; 0 is
    /// any other. It comes from the running kernel, whatever the process was built for.
    static unsigned short GetSystemType();
};

} // namespace zorv
