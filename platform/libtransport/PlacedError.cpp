// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/PlacedError.h"

namespace zorv {

PlacedError::~PlacedError() = default; // here, so that one library has the type information

} // namespace zorv
