// SPDX-License-Identifier: Apache-2.0
#include "fuzz/silenceLog.h"

#include "platform/libzorvlogger/Logger.h"

#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>

namespace zorv::fuzz {

void silenceLog() {
    log4cplus::initialize();
    log4cplus::Logger::getRoot().addAppender(log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    Logger::initialize();
}

} // namespace zorv::fuzz
