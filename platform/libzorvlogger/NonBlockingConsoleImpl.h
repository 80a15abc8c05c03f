// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <log4cplus/appender.h>

#include <cstddef>
#include <string>

namespace zorv {

/// Writes events to a file descriptor, and drops those that would have to wait because nobody reads: the log serves the
/// program and must not stop it. The next line that can be written is preceded by one that says how many were dropped.
///
/// An event is cut at what a pipe takes in one piece, so that it never waits half-way.
class NonBlockingConsole final : public log4cplus::Appender {
public:
    explicit NonBlockingConsole(int descriptor) : descriptor_(descriptor) {}
    ~NonBlockingConsole() override { destructorImpl(); }

    NonBlockingConsole(NonBlockingConsole const&) = delete;
    NonBlockingConsole& operator=(NonBlockingConsole const&) = delete;

    void close() override {}

protected:
    void append(log4cplus::spi::InternalLoggingEvent const& event) override;

private:
    bool write(std::string text) const;

    int descriptor_;
    std::size_t dropped_ = 0;
};

} // namespace zorv
