// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <stdexcept>
#include <string>

namespace zorv {

/// A number or a text that an enumeration does not have.
class ZORV_EXPORT InvalidEnumError : public std::invalid_argument {
public:
    InvalidEnumError(char const* enumName, std::string const& complaint);

    /// The error of an enumeration that stands at `path` in a text: the path comes before the complaint.
    InvalidEnumError(std::string const& path, InvalidEnumError const& error);

    /// The enumeration's scope name, such as "AddRemoveOp".
    std::string const& enumName() const noexcept { return enumName_; }

private:
    std::string enumName_;
};

/// Throws an InvalidEnumError with the text: invalid `enumName` value `value`.
[[noreturn]] ZORV_EXPORT void throwInvalidEnum(char const* enumName, int value);

/// Throws an InvalidEnumError with the text: invalid `enumName` text "`text`".
[[noreturn]] ZORV_EXPORT void throwInvalidEnum(char const* enumName, std::string const& text);

} // namespace zorv
