// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>

#include <chrono>
#include <cmath>
#include <sstream>
#include <string>

// Durations on the command line: seconds, with fractions.

namespace zorv {

constexpr double longestSeconds = 86400;

inline std::chrono::milliseconds toMilliseconds(double seconds) {
    return std::chrono::milliseconds(std::llround(seconds * 1000));
}

/// Accepts numbers from `lowest` to a day. CLI11's own range check would accept "nan".
inline CLI::Validator isSeconds(double lowest) {
    return CLI::Validator(
        [lowest](std::string const& text) {
            double seconds = 0;
            std::ostringstream complaint;
            bool const good =
                CLI::detail::lexical_cast(text, seconds) && seconds >= lowest && seconds <= longestSeconds;
            if (!good) { complaint << "not from " << lowest << " to " << longestSeconds << " seconds: " << text; }
            return complaint.str();
        },
        "");
}

} // namespace zorv
