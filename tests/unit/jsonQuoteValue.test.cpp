// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/jsonQuoteValue.h"

#include <gtest/gtest.h>

#include <string>

namespace zorv {
namespace {

TEST(JsonQuoteValue, PutsATextBetweenDoubleQuotes) { EXPECT_EQ(jsonQuoteValue("text"), "\"text\""); }

TEST(JsonQuoteValue, GivesTwoQuotesForAnEmptyText) { EXPECT_EQ(jsonQuoteValue(""), "\"\""); }

TEST(JsonQuoteValue, LeavesADoubleQuoteAsItIs) { EXPECT_EQ(jsonQuoteValue("a\"b"), "\"a\"b\""); }

TEST(JsonQuoteValue, LeavesABackslashAsItIs) { EXPECT_EQ(jsonQuoteValue("a\\b"), "\"a\\b\""); }

TEST(JsonQuoteValue, LeavesControlCharactersAsTheyAre) {
    std::string const text("\n\t\0\x1f", 4);
    EXPECT_EQ(jsonQuoteValue(text), "\"" + text + "\"");
}

} // namespace
} // namespace zorv
