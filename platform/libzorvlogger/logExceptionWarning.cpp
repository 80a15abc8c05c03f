// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvlogger/logExceptionWarning.h"

#include "platform/libzorvlogger/Logger.h"

namespace zorv {

void logExceptionWarning(std::string const& function, std::string const& text, std::exception const& error) {
    Logger::log(LogLevel::warn, function + ": " + text + error.what(), BOOST_CURRENT_LOCATION);
}

} // namespace zorv
