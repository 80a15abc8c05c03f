// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/scenario/Process.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace scenario {

/// Runs client commands that need no daemon, while none listens, and keeps their output.
class OfflineClient : public testing::Test {
protected:
    /// The exit code of `quillet` with the arguments.
    int run(std::vector<std::string> const& arguments) { return finish(clientCommand(1, arguments)); }

    int finish(std::vector<std::string> const& command) {
        Process client(command);
        auto const code = client.wait();
        lines_ = client.restOfOutput();
        errors_ = client.errors();
        return code;
    }

    zorv::TemporaryDirectory directory_;
    std::vector<std::string> lines_;
    std::string errors_;
};

} // namespace scenario
