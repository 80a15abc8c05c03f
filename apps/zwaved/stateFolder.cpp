// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/stateFolder.h"

#include <cstdlib>

namespace zorv::daemon {

namespace {

std::string environment(char const* name) {
    auto const* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): before there is another thread
    return value == nullptr ? "" : value;
}

} // namespace

std::string stateFolder() {
    // The service manager may name several folders, with colons between them.
    auto const given = environment("STATE_DIRECTORY");
    if (!given.empty()) { return given.substr(0, given.find(':')); }
    auto const ofUser = environment("XDG_STATE_HOME");
    if (!ofUser.empty()) { return ofUser + "/zwaved"; }
    auto const home = environment("HOME");
    return home.empty() ? "" : home + "/.local/state/zwaved";
}

} // namespace zorv::daemon
