// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "transport/CliViewer.h"

#include <sstream>
#include <string>

namespace zorv {

/// The rows that a message or a record adds to a table, after those that are there.
template <class Shown> StringVecVec shown(Shown const& object, StringVecVec rows = {}) {
    object.accumulateDisplay(rows);
    return rows;
}

/// What an object prints.
template <class Printed> std::string printed(Printed const& object) {
    std::ostringstream os;
    object.print(os);
    return os.str();
}

} // namespace zorv
