// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/ZwaveAddress.h"

#include <string>

namespace zorv {

/// Reads a node as users name it: "5", of the network that the daemon runs, or "c0ffee01:5".
///
/// A std::invalid_argument for anything else.
ZwaveAddress parseNode(std::string const& text);

} // namespace zorv
