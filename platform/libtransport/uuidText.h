// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <boost/uuid/uuid.hpp>

#include <cstddef>
#include <string_view>

namespace zorv {

/// Characters of a UUID's text, such as 0189abcd-ef01-4234-8567-89abcdef0123.
constexpr std::size_t uuidTextSize = 36;

/// Puts the text where there is room for it, and returns its end.
ZORV_EXPORT char* putUuid(char* at, boost::uuids::uuid const& id) noexcept;

/// Reads the text that putUuid() puts; false where it is any other, also one with capital letters.
ZORV_EXPORT bool parseUuid(std::string_view text, boost::uuids::uuid& id) noexcept;

} // namespace zorv
