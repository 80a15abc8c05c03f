// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/ControllerShift.h"

namespace zorv::controller {

std::string ControllerShift::objection(Network const& network) const {
    return network.module.knows<serialapi::ControllerChange>() ? "" : "the module does not know how";
}

/// The module's roles are others now.
void ControllerShift::conclude() {
    if (node() == 0 || hasProblem()) { return settled(); }
    readModule(Restart::none, [this] { settled(); });
}

} // namespace zorv::controller
