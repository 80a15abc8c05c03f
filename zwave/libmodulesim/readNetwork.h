// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "zwave/libmodulesim/SimulatedNetwork.h"

#include <string>

namespace zorv::modulesim {

/// Reads a network from a JSON file; docs/simulation.md describes its members.
///
/// A std::runtime_error names the file and, where it could be read, the line and the member, such as
/// "home.json:7: nodes[2].loss: expected a number from 0 to 1".
ZORV_EXPORT SimulatedNetwork readNetwork(std::string const& file);

/// The network of whoever is started without a network file.
ZORV_EXPORT SimulatedNetwork builtInNetwork();

} // namespace zorv::modulesim
