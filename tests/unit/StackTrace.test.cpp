// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvlogger/StackTrace.h"

#include "tests/support/LogCapture.h"
#include "tests/support/shown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <typeinfo>

namespace zorv {

/// Has a name that a stack trace can show: the program exports it.
[[gnu::noinline, gnu::visibility("default")]] StackTrace traceOfACallee() {
    StackTrace const trace;
    return trace;
}

template <class Content> struct Box {};

namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(StackTrace, BeginsWithTheFunctionThatMadeIt) {
    auto const text = printed(traceOfACallee());
    EXPECT_THAT(text.substr(0, text.find('\n')), HasSubstr("traceOfACallee"));
}

TEST(StackTrace, PrintsOneNumberedFrameOnEachLine) {
    std::istringstream lines(printed(traceOfACallee()));
    std::string line;
    int count = 0;
    while (std::getline(lines, line)) { EXPECT_THAT(line, StartsWith("  #" + std::to_string(count++) + ' ')); }
    EXPECT_GE(count, 3);
}

TEST(StackTrace, ACopyPrintsTheSame) {
    auto const trace = traceOfACallee();
    auto const copy = trace;
    EXPECT_EQ(printed(copy), printed(trace));
}

StackTrace traceBelow(int depth) { return depth == 0 ? StackTrace() : traceBelow(depth - 1); }

TEST(StackTrace, KeepsTheInnermostFramesOfADeepStack) {
    auto const text = printed(traceBelow(200));
    EXPECT_THAT(text, HasSubstr("  #31 "));
    EXPECT_THAT(text, testing::Not(HasSubstr("  #32 ")));
}

TEST(StackTrace, DemanglesTheNameOfAType) {
    EXPECT_EQ(StackTrace::demangle(typeid(StackTrace).name()), "zorv::StackTrace");
    EXPECT_EQ(StackTrace::demangle(typeid(Box<int>).name()), "zorv::Box<int>");
}

TEST(StackTrace, LeavesATextThatIsNotMangledAsItIs) {
    EXPECT_EQ(StackTrace::demangle("not mangled"), "not mangled");
    EXPECT_EQ(StackTrace::demangle(""), "");
}

TEST(StackTrace, LogsATextWithTheTraceBelowItAsOneWarning) {
    auto const trace = traceOfACallee();
    LogCapture const log;
    trace.log("something happened");
    EXPECT_THAT(log.lines(), testing::ElementsAre("WARN something happened\n" + printed(trace)));
}

} // namespace
} // namespace zorv
