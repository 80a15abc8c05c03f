// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "transport/CliViewer.h"
#include "zwave/libquillet/Export.h"

#include <vector>

namespace zorv {

/// Appends the rows in which messages show bytes: "Data:" and the bytes, eight to a row, after their decimal offset.
///
/// Rows after the first have an empty label. No bytes give one row that ends after its offset, "00:".
QUILLET_EXPORT void hexDump(StringVecVec& rows, std::vector<unsigned char> const& bytes);

} // namespace zorv
