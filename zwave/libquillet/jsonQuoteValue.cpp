// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/jsonQuoteValue.h"

namespace zorv {

std::string jsonQuoteValue(std::string const& value) {
    std::string quoted;
    quoted.reserve(value.size() + 2);
    quoted += '"';
    quoted += value;
    quoted += '"';
    return quoted;
}

} // namespace zorv
