// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <boost/system/error_code.hpp>

#include <cstddef>
#include <string>

namespace zorv::crypto {

/// The base64 text of `length` bytes, with padding, in the alphabet that ends with '+' and '/'.
///
/// `lines` ends each 64 characters, and the last ones, with a line feed, for texts that people copy; base64Decode takes
/// only the form without. `data` may be null where `length` is 0. Never throws: `error` is cleared or set, and the text
/// is empty where it is set.
///
/// Errors, all of the generic category: invalid_argument for null data; value_too_large and not_enough_memory for a
/// text that no string or no memory can hold.
ZORV_EXPORT std::string base64Encode(unsigned char const* data, std::size_t length, bool lines,
                                     boost::system::error_code& error) noexcept;

} // namespace zorv::crypto
