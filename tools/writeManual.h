// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <iosfwd>

namespace zorv {

/// Writes the manual page of the library: how it is used, and its messages with their members.
void writeManual(std::ostream& page);

} // namespace zorv
