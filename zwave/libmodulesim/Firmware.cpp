// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libmodulesim/FamiliesImpl.h"

namespace zorv::modulesim {

void serveFirmware(Core&) {}

} // namespace zorv::modulesim
