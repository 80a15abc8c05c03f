// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libzorvcrypto/CryptoResult.h"

#include <boost/system/error_code.hpp>

#include <cstddef>

namespace zorv::crypto {

/// The bytes of a base64 text of `length` characters. The empty text gives no bytes, which is not a failure.
///
/// Takes exactly the texts that base64Encode writes without lines: any other character, a length that is no multiple of
/// four, padding that is missing or misplaced, and bits that belong to no byte are failures. Never throws: `error` is
/// cleared or set, and the result is a failure where it is set.
///
/// Errors, all of the generic category: illegal_byte_sequence for a text that is not base64; invalid_argument for a null
/// text with a length; not_enough_memory.
ZORV_EXPORT CryptoResult base64Decode(char const* text, std::size_t length, boost::system::error_code& error) noexcept;

} // namespace zorv::crypto
