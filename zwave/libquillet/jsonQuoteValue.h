// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libquillet/Export.h"

#include <string>

namespace zorv {

/// The text between two double quotes. Nothing is escaped: this is for printed lines, never for the wire.
QUILLET_EXPORT std::string jsonQuoteValue(std::string const& value);

} // namespace zorv
