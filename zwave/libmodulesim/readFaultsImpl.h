// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libmodulesim/ObjectReaderImpl.h"

#include <vector>

namespace zorv::modulesim {

/// Reads the member `faults` of a network.
void readFaults(ObjectReader& network, std::vector<Fault>& faults);

} // namespace zorv::modulesim
