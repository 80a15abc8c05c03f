// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace zorv::daemon {

/// Where the state of a daemon with a real module is unless it is told otherwise: what the service manager gives it, or a
/// folder of its user; empty where there is neither.
std::string stateFolder();

} // namespace zorv::daemon
