// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvlogger/Logger.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

/// The same cases every time, unless RC_PARAMS says otherwise: RC_PARAMS="seed=7 max_success=10000".
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    zorv::Logger::consoleThreshold(zorv::LogLevel::error);
    ::setenv("RC_PARAMS", "seed=1", 0);
    std::cout << "RC_PARAMS: " << std::getenv("RC_PARAMS") << '\n';
    return RUN_ALL_TESTS();
}
