// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/Exclusion.h"

namespace zorv::controller {

void Exclusion::conclude() {
    if (!hasProblem()) { network().nodes.remove(node()); }
    settled();
}

} // namespace zorv::controller
