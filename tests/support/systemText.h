// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <system_error>

namespace zorv {

/// The system's own text for an error number such as ENOENT.
inline std::string systemText(int error) { return std::generic_category().message(error); }

} // namespace zorv
