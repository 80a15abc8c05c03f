// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Output.h"

#include "apps/quillet/ExitCode.h"
#include "platform/libzorvlogger/printable.h"

#include <cerrno>
#include <cstring>
#include <ostream>
#include <sstream>
#include <string>

namespace zorv {

void Output::show(TMessage const& message) {
    errno = 0;
    if (json_) {
        std::ostringstream text;
        message.print(text);
        os_ << printableJson(text.str()) << std::endl;
    } else {
        table_.add(message);
    }
    checkWritten();
}

void Output::show(StringVecVec const& rows, std::string const& json) {
    errno = 0;
    if (!json_) {
        table_.add(rows, {});
    } else if (!json.empty()) {
        os_ << printableJson(json) << std::endl;
    }
    checkWritten();
}

void Output::checkWritten() {
    if (os_) { return; }
    if (errno == EPIPE) { throw ExitError(ExitCode::ok, ""); }
    throw ExitError(ExitCode::noOutput, std::string("cannot write the output: ") + std::strerror(errno));
}

void Output::showRejection(Confirmable const& rejection) {
    if (json_) { show(rejection); }
    throw ExitError(ExitCode::refused, "the daemon did not understand the request: " + toString(rejection.result()));
}

} // namespace zorv
