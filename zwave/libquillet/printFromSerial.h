// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/Serializer.h"

#include <ostream>

namespace zorv {

/// Writes the JSON text of anything that has a serialInserter, whatever width the stream is to give its next item.
template <class T> void printFromSerial(std::ostream& os, T const& value) {
    Serializer s;
    value.serialInserter(s);
    os.width(0);
    os << s.str();
}

} // namespace zorv
