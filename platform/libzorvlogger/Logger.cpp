#include "platform/libzorvlogger/Logger.h"

#include "platform/libzorvlogger/printable.h"

#include <log4cplus/consoleappender.h>
#include <log4cplus/initializer.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>

#include <memory>
#include <mutex>

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

class Log {
public:
    Log() {
        auto root = log4cplus::Logger::getRoot();
        if (!root.getAllAppenders().empty()) { return; }
        bool const toStderr = true;
        bool const flushEachLine = true;
        console_ = new log4cplus::ConsoleAppender(toStderr, flushEachLine);
        console_->setLayout(std::make_unique<log4cplus::PatternLayout>("%D{%Y-%m-%dT%H:%M:%S.%q} %p %m%n"));
        console_->setThreshold(log4cplus::WARN_LOG_LEVEL);
        root.addAppender(console_);
        // log4cplus starts four threads for asynchronous appenders as it is loaded. Here is none: it keeps one of them.
        log4cplus::setThreadPoolSize(0);
    }

    log4cplus::Logger& logger() { return logger_; }

    void consoleThreshold(LogLevel level) {
        if (console_) { console_->setThreshold(toLog4cplus(level)); }
    }

private:
    log4cplus::Logger logger_ = log4cplus::Logger::getInstance("zorv");
    log4cplus::SharedAppenderPtr console_;
};

Log& theLog() {
    // log4cplus has to be up before the first logger is asked for, and is left running at exit: destructors of other
    // libraries may still have something to say.
    static std::once_flag up;
    std::call_once(up, [] { log4cplus::initialize(); });
    static Log log;
    return log;
}

} // namespace

void Logger::initialize() { theLog(); }

void Logger::consoleThreshold(LogLevel level) { theLog().consoleThreshold(level); }

bool Logger::enabled(LogLevel level) { return theLog().logger().isEnabledFor(toLog4cplus(level)); }

void Logger::log(LogLevel level, std::string const& text, boost::source_location const& where) {
    auto& logger = theLog().logger();
    if (!logger.isEnabledFor(toLog4cplus(level))) { return; }
    logger.forcedLog(toLog4cplus(level), printableLines(text), where.file_name(), static_cast<int>(where.line()),
                     where.function_name());
}

} // namespace zorv
