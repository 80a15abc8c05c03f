// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace zorv::fuzz {

/// Has every line of the log made, and none shown.
void silenceLog();

} // namespace zorv::fuzz
