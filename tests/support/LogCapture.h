// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvlogger/Logger.h"

#include <log4cplus/appender.h>
#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zorv {

struct LogEvent {
    std::string level; ///< such as "WARN"
    std::string text;
    std::string file;
    int line;
    std::string function;
};

/// Records what is logged as long as it lives.
class LogCapture {
public:
    LogCapture() : appender_(new Appender) {
        Logger::initialize();
        log4cplus::Logger::getRoot().addAppender(appender_);
    }
    ~LogCapture() { log4cplus::Logger::getRoot().removeAppender(appender_); }
    LogCapture(LogCapture const&) = delete;
    LogCapture& operator=(LogCapture const&) = delete;

    std::vector<LogEvent> const& events() const { return recorder().events; }

    /// The events' levels and texts, such as "WARN PingMsg: no answer".
    std::vector<std::string> lines() const {
        std::vector<std::string> lines;
        for (auto const& event : events()) { lines.push_back(event.level + ' ' + event.text); }
        return lines;
    }

    void clear() { recorder().events.clear(); }

    /// Called for each event once it is recorded; what it throws reaches the place that logs.
    void onEvent(std::function<void()> action) { recorder().action = std::move(action); }

private:
    struct Appender : log4cplus::Appender {
        ~Appender() override { destructorImpl(); }
        void close() override {}
        void append(log4cplus::spi::InternalLoggingEvent const& event) override {
            auto const& levels = log4cplus::getLogLevelManager();
            events.push_back({levels.toString(event.getLogLevel()), event.getMessage(), event.getFile(),
                              event.getLine(), event.getFunction()});
            if (action) { action(); }
        }
        std::vector<LogEvent> events;
        std::function<void()> action;
    };

    Appender& recorder() const { return static_cast<Appender&>(*appender_); }

    log4cplus::SharedAppenderPtr appender_;
};

} // namespace zorv
