// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvlogger/printable.h"

#include <gtest/gtest.h>

#include <string>

namespace zorv {
namespace {

TEST(Printable, PlainTextStaysAsItIs) {
    EXPECT_EQ(printable(""), "");
    EXPECT_EQ(printable(" routes~\\x1b \"a\""), " routes~\\x1b \"a\"");
}

TEST(Printable, OtherLanguagesStayAsTheyAre) {
    EXPECT_EQ(printable("Tür \xc2\xa0 \xe2\x82\xac \xf0\x9f\x98\x80"), "Tür \xc2\xa0 \xe2\x82\xac \xf0\x9f\x98\x80");
}

TEST(Printable, ControlCharactersShowInHex) {
    EXPECT_EQ(printable(std::string("\0a", 2)), "\\x00a");
    EXPECT_EQ(printable("\x1b[31mred\x1f"), "\\x1b[31mred\\x1f");
    EXPECT_EQ(printable("one\r\n\ttwo"), "one\\x0d\\x0a\\x09two");
    EXPECT_EQ(printable("\x7f"), "\\x7f");
}

TEST(Printable, C1ShowsInHexFromItsFirstToItsLast) {
    EXPECT_EQ(printable("\xc2\x80"), "\\xc2\\x80");
    EXPECT_EQ(printable("a\xc2\x9b"
                        "31m"),
              "a\\xc2\\x9b31m");
    EXPECT_EQ(printable("\xc2\x9f"), "\\xc2\\x9f");
}

TEST(Printable, BytesThatAreNotUtf8ShowInHex) {
    EXPECT_EQ(printable("\x9b"), "\\x9b");
    EXPECT_EQ(printable("a\xff!"), "a\\xff!");
    EXPECT_EQ(printable("\xe2\x82!"), "\\xe2\\x82!");                 // broken off by another character
    EXPECT_EQ(printable("\xe2\x82"), "\\xe2\\x82");                   // broken off by the end
    EXPECT_EQ(printable("\xc0\x9b"), "\\xc0\\x9b");                   // overlong
    EXPECT_EQ(printable("\xed\xa0\x80"), "\\xed\\xa0\\x80");          // half of a surrogate pair
    EXPECT_EQ(printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80"); // beyond Unicode
    EXPECT_EQ(printable("\xe2\xc3\xa4"), "\\xe2\xc3\xa4");            // what follows is a character
}

TEST(Printable, ShowsTheSameWhenShownAgain) {
    auto const shown = printable("\x1b\\\xff\n");
    EXPECT_EQ(printable(shown), shown);
}

TEST(PrintableLines, LineFeedsStayAtTheEndAndBeforeAnIndentedLine) {
    EXPECT_EQ(printableLines("error\n  #0 f\n  #1 g\n"), "error\n  #0 f\n  #1 g\n");
}

TEST(PrintableLines, NoTextBeginsALineOfItsOwn) {
    EXPECT_EQ(printableLines("name\n2026-01-31 WARN forged\n"), "name\\x0a2026-01-31 WARN forged\n");
    EXPECT_EQ(printableLines("a\n\nb"), "a\\x0a\\x0ab");
    EXPECT_EQ(printableLines("a\n\x1b[1A"), "a\\x0a\\x1b[1A");
    EXPECT_EQ(printableLines("a\r  b"), "a\\x0d  b");
}

TEST(PrintableJson, KeepsTheValueWithoutDelAndC1) {
    EXPECT_EQ(printableJson("{\"a\":\"\x7f\xc2\x80\xc2\x9b\xc2\x9f\"}"), "{\"a\":\"\\u007f\\u0080\\u009b\\u009f\"}");
    EXPECT_EQ(printableJson("{\"T\xc3\xbcr~\xc2\xa0\":\"\\u001b\"}"), "{\"T\xc3\xbcr~\xc2\xa0\":\"\\u001b\"}");
}

} // namespace
} // namespace zorv
