// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <stdexcept>

namespace zorv {

/// A text that cannot be read as messages, or a value that cannot be written as one.
///
/// Malformed text is named with line and column, a bad member with its path, what was expected and what was found.
class ZORV_EXPORT SerializerError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace zorv
