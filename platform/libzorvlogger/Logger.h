// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <boost/assert/source_location.hpp>

#include <string>

namespace zorv {

enum class LogLevel { debug, info, warn, error };

/// The process-wide log; lines go to the log4cplus logger named "zorv".
///
/// Safe to use from any thread. Every operation initialises the logger first where that has not happened yet.
class ZORV_EXPORT Logger {
public:
    /// Prepares log4cplus; a root logger without an appender gets one that shows WARN and above on stderr. Where stderr
    /// cannot take a line without waiting, the line is dropped, and the next one that can be written tells how many.
    static void initialize();

    /// Sets the lowest level that the appender made by initialize() shows; appenders of the application are not touched.
    static void consoleThreshold(LogLevel level);

    /// Whether some appender may show the level. Callers ask before they build a costly text.
    static bool enabled(LogLevel level);

    /// Writes `text` as one event that carries `where` as its source location; control characters as printableLines() says.
    static void log(LogLevel level, std::string const& text, boost::source_location const& where);
};

} // namespace zorv
