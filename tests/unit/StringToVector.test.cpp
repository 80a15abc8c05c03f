// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/StringToVector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zorv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> split(std::string const& text, std::string const& delimiters, bool keepEmpty) {
    std::vector<std::string> parts{"from before"};
    StringToVector(text, parts, delimiters, keepEmpty);
    return parts;
}

TEST(StringToVector, SplitsAtTheDelimiterAndReplacesWhatWasThere) {
    EXPECT_THAT(split("a|bc|d", "|", true), ElementsAre("a", "bc", "d"));
}

TEST(StringToVector, GivesATextWithoutDelimiterAsOnePiece) {
    EXPECT_THAT(split("abc", "|", true), ElementsAre("abc"));
    EXPECT_THAT(split("abc", "|", false), ElementsAre("abc"));
}

TEST(StringToVector, KeepsEmptyPiecesWhenAsked) {
    EXPECT_THAT(split("|a||b|", "|", true), ElementsAre("", "a", "", "b", ""));
    EXPECT_THAT(split("|", "|", true), ElementsAre("", ""));
}

TEST(StringToVector, DropsEmptyPiecesOtherwise) {
    EXPECT_THAT(split("|a||b|", "|", false), ElementsAre("a", "b"));
    EXPECT_THAT(split("||", "|", false), IsEmpty());
}

TEST(StringToVector, GivesNoPiecesForAnEmptyText) {
    EXPECT_THAT(split("", "|", true), IsEmpty());
    EXPECT_THAT(split("", "|", false), IsEmpty());
}

TEST(StringToVector, SplitsAtEachOfSeveralDelimiters) {
    EXPECT_THAT(split("a,b;c", ",;", true), ElementsAre("a", "b", "c"));
}

TEST(StringToVector, SplitsATextThatTheVectorHeld) {
    std::vector<std::string> parts{"a|b"};
    StringToVector(std::string(parts[0]), parts, "|", true);
    EXPECT_THAT(parts, ElementsAre("a", "b"));
}

} // namespace
} // namespace zorv
