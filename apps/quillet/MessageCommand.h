// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/Command.h"
#include "apps/quillet/EventView.h"

#include <memory>
#include <string>
#include <vector>

namespace zorv {

/// A word of the command line, or with "--" an option, that becomes a member of the request. Its form is the member's.
struct MessageArgument {
    char const* name = "";
    char const* member = "";
    bool isOptional = false;
};

/// A request of a class, with members as JSON.
struct MessageStep {
    char const* message = "";
    char const* members = "{}";
};

/// What is done when the requests have been answered.
enum class MessageEnd { none, follow, untilDaemonEnds };

/// How long work goes on and ends. The daemon ends it when it is over, and tells its progress.
struct LongWork {
    bool isLong = false;
    unsigned int timeUnit = 0;    ///< of the message's time-out, milliseconds; 0 where it has none
    char const* interrupted = ""; ///< is said when the user interrupts it
    char const* abort = "";       ///< members of the request that then ends it in order
};

/// Messages that come unasked while a command runs, and how they are shown.
struct ShownEvents {
    EventForm form = EventForm::none;
    char const* names = "";   ///< what is subscribed to before the requests, as members of the subscription
    bool isOnRequest = false; ///< of the user, who says --follow
};

/// One command that is made of requests; all of them are in one table.
struct MessageCommandDescription {
    char const* name = "";
    char const* help = "";
    std::vector<MessageStep> steps = {}; ///< the last one takes the arguments
    std::vector<MessageArgument> arguments = {};
    LongWork work = {};
    char const* destroys = ""; ///< what cannot be undone; the user is asked before
    MessageEnd end = MessageEnd::none;
    ShownEvents events = {};
};

/// The commands of `quillet`, and those below `quillet nvm`.
std::vector<MessageCommandDescription> const& commandTable();
std::vector<MessageCommandDescription> const& nvmCommandTable();

/// The commands below `nvm` that are nothing but requests.
std::vector<std::unique_ptr<Command>> makeNvmMessageCommands();

} // namespace zorv
