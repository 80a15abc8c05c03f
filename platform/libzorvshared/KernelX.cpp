// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/KernelX.h"

#include <string_view>

#include <sys/utsname.h>

namespace zorv {

unsigned short KernelX::GetSystemType() {
    utsname system{};
    if (uname(&system) != 0) { return 0; }
    std::string_view const machine(system.machine);
    // i386 to i686
    if (machine.size() == 4 && machine.front() == 'i' && machine.substr(2) == "86") { return 1; }
    if (machine == "x86_64") { return 2; }
    if (machine.substr(0, 3) == "arm") { return 3; }
    if (machine == "aarch64") { return 4; }
    return 0;
}

} // namespace zorv
