// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvlogger/NonBlockingConsoleImpl.h"

#include <log4cplus/layout.h>
#include <log4cplus/spi/loggingevent.h>

#include <climits>
#include <poll.h>
#include <unistd.h>

#include <sstream>
#include <utility>

namespace zorv {

void NonBlockingConsole::append(log4cplus::spi::InternalLoggingEvent const& event) {
    std::ostringstream os;
    layout->formatAndAppend(os, event);
    if (dropped_ > 0 && !write("... " + std::to_string(dropped_) + " lines dropped, nobody read them\n")) {
        ++dropped_;
        return;
    }
    dropped_ = write(os.str()) ? 0 : 1;
}

/// Writes the text; false if that would block.
bool NonBlockingConsole::write(std::string text) const {
    if (text.size() > PIPE_BUF) {
        text.resize(PIPE_BUF - 1);
        text += '\n';
    }
    // A pipe that is ready takes this much in one piece without blocking.
    pollfd ready{descriptor_, POLLOUT, 0};
    if (::poll(&ready, 1, 0) != 1 || (ready.revents & POLLOUT) == 0) { return false; }
    return ::write(descriptor_, text.data(), text.size()) >= 0;
}

} // namespace zorv
