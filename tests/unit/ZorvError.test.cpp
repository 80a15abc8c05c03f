// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ZorvError.h"

#include "tests/support/LogCapture.h"
#include "tests/support/errorOf.h"
#include "tests/support/shown.h"
#include "zwave/libquillet/PingMsg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <type_traits>

namespace zorv {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// An error that describes itself in its own words.
class OutspokenError : public ZorvError {
public:
    OutspokenError() : ZorvError("text") {}
    void print(std::ostream& os) const override { os << "in its own words"; }
};

TEST(ZorvError, WhatReturnsTheTextThatTheClassPrints) { EXPECT_STREQ(OutspokenError().what(), "in its own words"); }

/// An error whose description cannot be made.
class SpeechlessError : public ZorvError {
public:
    SpeechlessError() : ZorvError("text") {}
    void print(std::ostream&) const override { throw std::bad_alloc(); }
};

TEST(ZorvErrorDeathTest, WhatEndsTheProcessWhenTheDescriptionCannotBeMade) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(SpeechlessError().what(), testing::KilledBySignal(SIGABRT), "");
}

TEST(ZorvError, TwoCallsOfWhatOnTheSameErrorReturnTheSamePointer) {
    SyntaxError const error("text");
    auto const* const first = error.what();
    EXPECT_EQ(error.what(), first);
}

TEST(ZorvError, WhatEqualsThePrintedText) {
    SyntaxError const error("text");
    EXPECT_EQ(error.what(), printed(error));
}

TEST(ZorvError, WhatHoldsClassNameMessageAndTrace) {
    MessageError const error(std::string("text"));
    EXPECT_EQ(error.what(), "zorv::MessageError: text\n" + printed(error.trace()));
}

TEST(ZorvError, WhatOfAStandardExceptionIsTheFullDescription) {
    TransportError const error("text");
    std::exception const& base = error;
    EXPECT_THAT(base.what(), StartsWith("zorv::TransportError: text\n"));
}

TEST(ZorvError, BriefWhatOfANullPointerErrorOfAResponseFormIsExactlyMsgIsNull) {
    EXPECT_EQ(errorOf([] { PingMsg::create(nullptr, ZResult::success, 0); }), "NullPointerError: msg is null");
}

TEST(ZorvError, PrintOfASyntaxErrorBeginsWithItsClassNameAndText) {
    EXPECT_THAT(printed(SyntaxError("expected array, got object")),
                StartsWith("zorv::SyntaxError: expected array, got object\n"));
}

TEST(ZorvError, IsNamedByItsMostDerivedClass) {
    NullPointerError const error("text");
    ZorvError const& base = error;
    EXPECT_THAT(printed(base), StartsWith("zorv::NullPointerError: text\n"));
    EXPECT_THAT(printed(ZorvError("text")), StartsWith("zorv::ZorvError: text\n"));
    EXPECT_THAT(printed(TransportError("text")), StartsWith("zorv::TransportError: text\n"));
    EXPECT_THAT(printed(MessageError("text")), StartsWith("zorv::MessageError: text\n"));
}

TEST(ZorvError, IsDerivedAsItsClassTreeSays) {
    EXPECT_TRUE((std::is_base_of_v<std::runtime_error, ZorvError>));
    EXPECT_TRUE((std::is_base_of_v<ZorvError, TransportError>));
    EXPECT_TRUE((std::is_base_of_v<TransportError, NullPointerError>));
    EXPECT_TRUE((std::is_base_of_v<ZorvError, MessageError>));
    EXPECT_TRUE((std::is_base_of_v<MessageError, SyntaxError>));
    EXPECT_FALSE((std::is_base_of_v<TransportError, MessageError>));
}

TEST(ZorvError, TakesAnEmptyMessage) {
    SyntaxError const error("");
    EXPECT_STREQ(error.briefWhat(), "");
    EXPECT_THAT(error.what(), StartsWith("zorv::SyntaxError: \n"));
}

[[gnu::noinline]] ZorvError makeErrorHere() { return ZorvError("text"); }

TEST(ZorvError, KeepsTheTraceOfThePlaceWhereItWasMade) {
    auto const error = makeErrorHere();
    EXPECT_THAT(printed(error.trace()), StartsWith("  #0 "));
    EXPECT_THAT(printed(error.trace()), HasSubstr("\n  #1 "));
}

TEST(ZorvError, ACopyHasItsOwnDescriptionWithTheSameText) {
    auto error = std::make_unique<SyntaxError>("text");
    std::string const description = error->what();
    SyntaxError const copy(*error);
    EXPECT_NE(copy.what(), error->what());
    error.reset();
    EXPECT_EQ(copy.what(), description);
    EXPECT_STREQ(copy.briefWhat(), "text");
}

TEST(ZorvError, AssigningReplacesTheDescription) {
    SyntaxError error("old");
    EXPECT_THAT(error.what(), StartsWith("zorv::SyntaxError: old\n"));
    SyntaxError const other("new");
    error = other;
    EXPECT_STREQ(error.briefWhat(), "new");
    EXPECT_STREQ(error.what(), other.what());
}

TEST(ZorvError, AssigningToItselfKeepsTheDescription) {
    SyntaxError error("text");
    auto const* const description = error.what();
    auto const& same = error;
    error = same;
    EXPECT_EQ(error.what(), description);
}

TEST(ZorvError, LogsClassNameAndMessageWithTheTraceAsOneWarning) {
    LogCapture const log;
    SyntaxError const error("text");
    error.log();
    ASSERT_EQ(log.events().size(), 1U);
    EXPECT_EQ(log.events()[0].level, "WARN");
    EXPECT_EQ(log.events()[0].text, "zorv::SyntaxError: text\n" + printed(error.trace()));
}

TEST(ZorvError, LogsAMessageThatStaysOnItsLine) {
    LogCapture const log;
    SyntaxError("the peer's \x1b[2J\n2026 WARN forged").log();
    ASSERT_EQ(log.events().size(), 1U);
    EXPECT_THAT(log.events()[0].text, StartsWith("zorv::SyntaxError: the peer's \\x1b[2J\\x0a2026 WARN forged\n  #0 "));
}

TEST(ZorvError, PrintsNothingToAStreamThatHasFailed) {
    SyntaxError const error("text");
    std::ostringstream os;
    os.setstate(std::ios::failbit);
    error.print(os);
    EXPECT_EQ(os.str(), "");
}

} // namespace
} // namespace zorv
