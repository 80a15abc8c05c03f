// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/Command.h"
#include "apps/quillet/Session.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace zorv {

class Progress;

/// How long the client waits for the answer to a request that may be long work; without a value, as long as for any
/// other. The daemon ends each work within an hour.
std::chrono::milliseconds longestWork(DaemonAddress const& daemon);

/// What the user's interruption of a request does.
struct Interruption {
    boost::shared_ptr<Confirmable> request = {}; ///< is sent first, so that the work ends in order
    std::string text = {};                       ///< is said
    std::string ended = {};                      ///< is said when the answer has come nevertheless, before its result
};

/// The requests of one command: shows how they go on, and how they end.
class Conversation {
public:
    Conversation(DaemonAddress const& daemon, Output& output, std::string what)
        : session_(daemon), output_(output), what_(std::move(what)) {}

    /// Sends the request, shows its progress and returns its answer.
    ///
    /// It takes `timeout`, or as long as any other. `limit` is when the work ends by itself, where it does.
    boost::shared_ptr<Confirmable> ask(boost::shared_ptr<Confirmable> const& request,
                                       std::optional<std::chrono::milliseconds> timeout = {},
                                       Interruption const& interruption = {},
                                       std::optional<std::chrono::milliseconds> limit = {});

    /// Does what writes to the terminal, where no line of progress is in the way.
    void beside(std::function<void()> const& work);

    /// Shows an answer, and says what it means for the exit code. One that is no success is said on standard error.
    ExitCode show(Confirmable const& answer);

    /// The exit code alone, and the text on standard error.
    ExitCode judge(Confirmable const& answer);

    /// The answer was a success, or has no result to tell.
    static bool isGood(Confirmable const& answer);

    Session& session() noexcept { return session_; }

private:
    Session session_;
    Output& output_;
    std::string what_;
    Progress* progress_ = nullptr;           ///< while something is asked
    std::optional<std::string> interrupted_; ///< what is to be said of the end
};

} // namespace zorv
