// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <string>

namespace zorv {

class Serializable;

/// The JSON text of an object; `readSerializable` is its reverse.
///
/// Errors: SerializerError for what cannot be written (a number that is not finite, a string that is not UTF-8, more than
/// the limits allow), InvalidEnumError for a value that an enumeration does not have.
ZORV_EXPORT std::string toText(Serializable const& object);

} // namespace zorv
