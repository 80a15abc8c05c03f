// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/CommandLine.h"

namespace zorv {

/// Reads commands from the terminal until the user leaves, and shows the daemon's events meanwhile.
ExitCode runInteractively(ClientOptions const& options);

} // namespace zorv
