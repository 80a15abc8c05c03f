#pragma once

#include "platform/libtransport/Serializer.h"

#include <ostream>

namespace zorv {

/// Writes the JSON text of anything that has a serialInserter.
template <class T> void printFromSerial(std::ostream& os, T const& value) {
    Serializer s;
    value.serialInserter(s);
    os << s.str();
}

} // namespace zorv
