// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvlogger/Logger.h"

#include "platform/libzorvlogger/logExceptionWarning.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace zorv {
namespace {

using testing::ElementsAre;

TEST(Logger, WritesEachLevelUnderItsName) {
    LogCapture const log;
    auto const here = BOOST_CURRENT_LOCATION;
    Logger::log(LogLevel::debug, "a", here);
    Logger::log(LogLevel::info, "b", here);
    Logger::log(LogLevel::warn, "c", here);
    Logger::log(LogLevel::error, "d", here);
    EXPECT_THAT(log.lines(), ElementsAre("DEBUG a", "INFO b", "WARN c", "ERROR d"));
}

TEST(Logger, WritesTheGivenSourceLocation) {
    LogCapture const log;
    Logger::log(LogLevel::warn, "text", boost::source_location("file.cpp", 17, "void f()"));
    ASSERT_EQ(log.events().size(), 1U);
    EXPECT_EQ(log.events()[0].file, "file.cpp");
    EXPECT_EQ(log.events()[0].line, 17);
    EXPECT_EQ(log.events()[0].function, "void f()");
}

TEST(Logger, WritesNothingBelowTheLoggersLevel) {
    LogCapture const log;
    auto logger = log4cplus::Logger::getInstance("zorv");
    logger.setLogLevel(log4cplus::ERROR_LOG_LEVEL);
    EXPECT_FALSE(Logger::enabled(LogLevel::warn));
    EXPECT_TRUE(Logger::enabled(LogLevel::error));
    Logger::log(LogLevel::warn, "text", BOOST_CURRENT_LOCATION);
    logger.setLogLevel(log4cplus::NOT_SET_LOG_LEVEL);
    EXPECT_TRUE(log.events().empty());
}

TEST(Logger, HasOneAppenderWhenInitializedTwice) {
    Logger::initialize();
    Logger::initialize();
    EXPECT_EQ(log4cplus::Logger::getRoot().getAllAppenders().size(), 1U);
}

TEST(LogExceptionWarning, NamesTheFunctionTheTextAndTheError) {
    LogCapture const log;
    logExceptionWarning("restore", "cannot read: ", std::runtime_error("no such file"));
    EXPECT_THAT(log.lines(), ElementsAre("WARN restore: cannot read: no such file"));
}

TEST(Logger, WritesControlCharactersInHex) {
    LogCapture const log;
    Logger::log(LogLevel::warn, "the blob \x1b[31m\nred\xff is corrupt", BOOST_CURRENT_LOCATION);
    EXPECT_THAT(log.lines(), ElementsAre("WARN the blob \\x1b[31m\\x0ared\\xff is corrupt"));
}

} // namespace
} // namespace zorv
