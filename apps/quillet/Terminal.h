// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace zorv {

/// What one of the standard streams goes to: a terminal with its width and its colours, or anything else.
class Terminal {
public:
    /// For a stream that is no terminal.
    Terminal() = default;
    explicit Terminal(int descriptor);

    bool isThere() const noexcept { return descriptor_ >= 0; }

    /// Its width now, since a window may be resized; 0 where there is no terminal, or nobody knows. A serial console does
    /// not tell its width, there COLUMNS does.
    std::size_t columns() const;

    /// Not where the user has set NO_COLOR, or the terminal is dumb.
    bool hasColour() const;

private:
    int descriptor_ = -1;
};

// What is written to a terminal to have it do something.
namespace escape {

constexpr char const* clearLine = "\r\x1b[K"; ///< back to the start of the line, whose rest is cleared
constexpr char const* clearBelow = "\r\x1b[J";
constexpr char const* red = "\x1b[31m";
constexpr char const* green = "\x1b[32m";
constexpr char const* yellow = "\x1b[33m";
constexpr char const* plain = "\x1b[0m";

} // namespace escape

} // namespace zorv
