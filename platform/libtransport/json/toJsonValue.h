// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <json/value.h>

#include <string_view>

namespace zorv {

/// What kind of value begins with the character at `at`; a number's kind depends on how large it is.
Json::ValueType typeAt(char const* at);

/// The end of the number or literal at `at`.
char const* skipScalar(char const* at, char const* end);

/// The value that stands at `at`, in a text that has been checked.
Json::Value toJsonValue(char const* at, char const* end);

} // namespace zorv
