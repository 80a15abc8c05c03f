// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/SimulatedNetwork.h"

#include <string>

namespace zorv {

/// Reads a network from a JSON file; docs/daemon.md describes its members.
///
/// A std::runtime_error names the file and, where it could be read, the line and the member, such as
/// "home.json:7: nodes[2].loss: expected a number from 0 to 1".
NetworkDescription readNetwork(std::string const& file);

/// The network of a daemon that is started without a network file.
NetworkDescription builtInNetwork();

} // namespace zorv
