// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/Terminal.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace zorv {

class TMessage;

/// How far long work has come.
struct WorkState {
    std::optional<unsigned int> percent;
    std::string text;                                 ///< where there is no percentage
    std::chrono::milliseconds elapsed{};              ///< since the work began
    std::optional<std::chrono::milliseconds> limit{}; ///< the work ends after so long a time, done or not
};

/// The state in one line of at most so many columns: with a percentage a bar, the rate and the time that is left,
/// otherwise its text and its times.
std::string progressLine(std::string const& what, WorkState const& state, std::size_t columns);

/// Shows on standard error how long work goes on: on a terminal in one line that is written again, otherwise as a line at
/// each tenth, and where the state changes.
class Progress {
public:
    /// `limit` is when the work ends by itself.
    Progress(std::string what, Terminal terminal, std::optional<std::chrono::milliseconds> limit);
    ~Progress();

    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    void show(TMessage const& message);

    /// Writes the line of a terminal again, for the time has gone on.
    void tick();

    /// Says something beside the progress.
    void say(std::string const& text);

    /// Takes the line from the terminal, so that something else can be written.
    void clear();

private:
    void draw();

    std::string what_;
    Terminal terminal_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::optional<WorkState> state_;
    std::string last_; ///< that was written where there is no terminal
};

} // namespace zorv
