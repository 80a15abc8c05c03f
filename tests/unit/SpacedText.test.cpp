// SPDX-License-Identifier: Apache-2.0
// Texts of other writers, which put blanks between a text's parts.

#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/toText.h"
#include "tests/support/golden.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace zorv {
namespace {

/// The text with a blank text before or behind each of the given characters that is not part of a string.
std::string spaced(std::string const& text, std::string_view characters, std::string const& before,
                   std::string const& behind) {
    std::string result;
    bool isInString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        bool const isEscaped = i > 0 && text[i - 1] == '\\';
        if (text[i] == '"' && !isEscaped) { isInString = !isInString; }
        bool const isChosen = !isInString && characters.find(text[i]) != std::string_view::npos;
        result += isChosen ? before + text[i] + behind : std::string(1, text[i]);
    }
    return result;
}

TEST(SpacedText, IsReadAsTheSameMessageWhereverTheBlanksAre) {
    for (auto const& name : goldenNames()) {
        auto const text = golden(name);
        for (std::string const characters : {":", ",", "[{", "]}", ":,", ":,[]{}"}) {
            for (std::string const blank : {" ", "\t", "\r\n", "                                        "}) {
                EXPECT_EQ(toText(*readSerializable(spaced(text, characters, "", blank))), text) << name << characters;
                EXPECT_EQ(toText(*readSerializable(spaced(text, characters, blank, ""))), text) << name << characters;
                EXPECT_EQ(toText(*readSerializable(spaced(text, characters, blank, blank))), text) << name;
            }
        }
    }
}

} // namespace
} // namespace zorv
