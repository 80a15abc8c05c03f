// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/confirm.h"

#include "apps/quillet/ExitCode.h"

#include <unistd.h>

#include <iostream>

namespace zorv {

void confirm(std::string const& what) {
    if (::isatty(STDIN_FILENO) != 1 || ::isatty(STDERR_FILENO) != 1) {
        throw ExitError(ExitCode::usage, what + "; say --yes where nobody can be asked");
    }
    std::cerr << "quillet: " << what << ". Go on? [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    if (answer != "y" && answer != "yes") { throw ExitError(ExitCode::refused, "nothing was done"); }
}

} // namespace zorv
