// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/throwInvalidEnum.h"

namespace zorv {

InvalidEnumError::InvalidEnumError(char const* enumName, std::string const& complaint)
    : std::invalid_argument("invalid " + std::string(enumName) + complaint), enumName_(enumName) {}

InvalidEnumError::InvalidEnumError(std::string const& path, InvalidEnumError const& error)
    : std::invalid_argument(path.empty() ? error.what() : path + ": " + error.what()), enumName_(error.enumName_) {}

void throwInvalidEnum(char const* enumName, int value) {
    throw InvalidEnumError(enumName, " value " + std::to_string(value));
}

void throwInvalidEnum(char const* enumName, std::string const& text) {
    throw InvalidEnumError(enumName, " text \"" + text + '"');
}

} // namespace zorv
