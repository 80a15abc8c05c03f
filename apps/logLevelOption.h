// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvlogger/Logger.h"

#include <CLI/CLI.hpp>

#include <map>
#include <string>

namespace zorv {

/// The option of all programs that run on until they are told to end.
inline void addLogLevel(CLI::App& app, LogLevel& level) {
    std::map<std::string, LogLevel> const levels{
        {"debug", LogLevel::debug}, {"info", LogLevel::info}, {"warn", LogLevel::warn}, {"error", LogLevel::error}};
    app.add_option("--log-level", level, "Lowest level that is logged to stderr: debug, info, warn, error")
        ->type_name("LEVEL")
        ->transform(CLI::CheckedTransformer(levels).description(""));
}

} // namespace zorv
