// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <exception>
#include <string>

namespace zorv {

/// Logs at WARN that `function` met `error`: one event "function: text" followed by the error's full description.
ZORV_EXPORT void logExceptionWarning(std::string const& function, std::string const& text, std::exception const& error);

} // namespace zorv
