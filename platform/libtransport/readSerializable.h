// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <boost/shared_ptr.hpp>

#include <string>

namespace zorv {

class Serializable;

/// Rebuilds the object that `text`, one JSON object, holds, by the factory registered under its serial name.
///
/// Errors: SerializerError for malformed text, an unknown class or a bad member; InvalidEnumError for a text or a value
/// that an enumeration does not have; and what the class's own reader throws.
ZORV_EXPORT boost::shared_ptr<Serializable> readSerializable(std::string const& text);

} // namespace zorv
