// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvlogger/Logger.h"

#include "platform/libzorvlogger/NonBlockingConsoleImpl.h"
#include "platform/libzorvlogger/printable.h"

#include <log4cplus/initializer.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>

#include <unistd.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

namespace zorv {

namespace {

log4cplus::LogLevel toLog4cplus(LogLevel level) {
    switch (level) {
    case LogLevel::debug: return log4cplus::DEBUG_LOG_LEVEL;
    case LogLevel::info: return log4cplus::INFO_LOG_LEVEL;
    case LogLevel::warn: return log4cplus::WARN_LOG_LEVEL;
    case LogLevel::error: return log4cplus::ERROR_LOG_LEVEL;
    }
    return log4cplus::ERROR_LOG_LEVEL;
}

/// A console whose setup was interrupted; the next call that logs completes it. It is never destroyed: an appender's
/// destructor logs, and ends the process if no memory is left for that.
NonBlockingConsole* unfinished = nullptr;

class Log {
public:
    Log() {
        if (!root_.getAllAppenders().empty()) { return; }
        if (unfinished == nullptr) {
            unfinished = new NonBlockingConsole(STDERR_FILENO);
            unfinished->addReference();
        }
        console_ = unfinished;
        console_->setLayout(std::make_unique<log4cplus::PatternLayout>("%d{%Y-%m-%dT%H:%M:%S.%qZ} %p %m%n")); // UTC
        consoleThreshold(LogLevel::warn);
        root_.addAppender(console_);
        // log4cplus starts four threads for asynchronous appenders as it is loaded. There is no such appender here: one
        // thread stays.
        log4cplus::setThreadPoolSize(0);
        std::exchange(unfinished, nullptr)->removeReference();
    }

    // The console's code is unloaded with this library, and log4cplus may stay loaded.
    ~Log() {
        if (console_) { root_.removeAppender(console_); }
    }

    Log(Log const&) = delete;
    Log& operator=(Log const&) = delete;

    log4cplus::Logger& logger() { return logger_; }

    void consoleThreshold(LogLevel level) {
        if (!console_) { return; }
        console_->setThreshold(toLog4cplus(level));
        consoleLevel_ = toLog4cplus(level);
    }

    /// Whether some appender may show the level.
    bool enabled(log4cplus::LogLevel level) {
        if (!logger_.isEnabledFor(level)) { return false; }
        return level >= consoleLevel_ || root_.getAllAppenders().size() != 1;
    }

private:
    log4cplus::Logger root_ = log4cplus::Logger::getRoot();
    log4cplus::Logger logger_ = log4cplus::Logger::getInstance("zorv");
    log4cplus::SharedAppenderPtr console_;
    std::atomic<log4cplus::LogLevel> consoleLevel_{
        log4cplus::ALL_LOG_LEVEL}; // the lowest where the console is not ours
};

Log& theLog() {
    // log4cplus must be initialised before the first logger is requested. It keeps running at exit, because destructors
    // of other libraries may still log.
    static std::once_flag up;
    std::call_once(up, [] { log4cplus::initialize(); });
    static Log log;
    return log;
}

} // namespace

void Logger::initialize() { theLog(); }

void Logger::consoleThreshold(LogLevel level) { theLog().consoleThreshold(level); }

bool Logger::enabled(LogLevel level) { return theLog().enabled(toLog4cplus(level)); }

void Logger::log(LogLevel level, std::string const& text, boost::source_location const& where) {
    if (!enabled(level)) { return; }
    theLog().logger().forcedLog(toLog4cplus(level), printableLines(text), where.file_name(),
                                static_cast<int>(where.line()), where.function_name());
}

} // namespace zorv
