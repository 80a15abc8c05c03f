// SPDX-License-Identifier: Apache-2.0
// Compares the reader with a simple one over a JsonCpp tree. Both must give the same result for every text, good or
// damaged.

#include "platform/libtransport/Serializer.h"
#include "tests/support/damagedTexts.h"
#include "tests/support/json.h"
#include "tests/unit/oracle/TreeReader.h"
#include "tests/unit/oracle/transcript.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

namespace zorv {
namespace {

using Position = std::pair<unsigned long, unsigned long>; // line and column

Position positionOf(std::string const& complaint) {
    Position position;
    EXPECT_EQ(
        std::sscanf(complaint.c_str(), "malformed text: line %lu, column %lu: ", &position.first, &position.second), 2)
        << complaint;
    return position;
}

std::optional<Json::Value> treeOf(std::string const& text) {
    try {
        TreeReader tree(text);
        return tree.topNode();
    } catch (SerializerError const&) { return std::nullopt; }
}

/// Both complain. The tree reader reads the text twice, so its complaint may be about a later error than the first. A
/// complaint of JsonCpp's own begins with a capital letter or a quote, and its place may differ.
void expectEarlierComplaint(std::string const& complaint, std::string const& treeComplaint) {
    auto const position = positionOf(complaint);
    auto const treePosition = positionOf(treeComplaint);
    auto const wording = treeComplaint.substr(treeComplaint.find(": ", treeComplaint.find("column")) + 2);
    if (wording.front() >= 'a' || wording.compare(0, 3, "NUL") == 0) {
        EXPECT_LE(position, treePosition) << complaint << " | " << treeComplaint;
    }
}

void compareReaders(std::string const& text, unsigned int seed) {
    auto const tree = treeOf(text);
    auto const guide = tree.value_or(Json::Value());
    auto const expected = readingOf([&] { return TreeReader(text); }, guide, seed);
    auto const reading = readingOf([&] { return Serializer(text); }, guide, seed);
    ASSERT_EQ(reading.isMalformed, expected.isMalformed) << text << '\n' << reading.text << '\n' << expected.text;
    if (reading.isMalformed) {
        expectEarlierComplaint(reading.text, expected.text);
    } else {
        ASSERT_EQ(reading.text, expected.text) << text;
        ASSERT_EQ(Serializer(text).topNode(), guide) << text;
    }
}

TEST(SerializerOracle, AgreesOnTheGoldenTexts) {
    for (auto const& text : goldenTexts()) {
        for (unsigned int seed = 0; seed < 5; ++seed) {
            compareReaders(text, seed);
            compareReaders(toTextBackwards(toJson(text)), seed);
        }
    }
}

TEST(SerializerOracle, AgreesOnTextsWithBlanksInEveryPlace) {
    for (auto const& text : goldenTexts()) { compareReaders(' ' + toJson(text).toStyledString() + "\t\r\n", 1); }
}

TEST(SerializerOracle, AgreesOnDamagedTexts) {
    auto const texts = goldenTexts();
    Damage damage(texts, 20261121);
    for (unsigned int i = 0; i < 20000 && !testing::Test::HasFailure(); ++i) { compareReaders(damage.mutant(), i); }
}

TEST(SerializerOracle, AgreesOnOddTexts) {
    for (std::string const text :
         {R"({"a\"b":1,"a\\":2,"\u0061":3,"":4})", R"({"a":{"\u005f_bases__":[{"__name__":"A"}]}})",
          R"({"__bases__":[1,[],{"__name__":7},{"v":1,"__name__":"\u0041"},{"__name__":"A"}]})", R"([[],{},[[]],[{}]])",
          R"([0,-0,-0.0,0.0,1e0,0e5,-1,255,256,65536,2147483648,4294967296,9223372036854775808,18446744073709551616])",
          R"([1e308,1e-308,1e-400,-1e-400,4.9e-324,2e-324,123456789012345678901234567890,0.1e-9999999999999999999])",
          R"({"a":1,"\u0061":2})", R"({"\n":1,"\u000A":2})", R"(["\u0000\ud83d\ude00\/"])", "[1e309]", "[1,]", "{,}"}) {
        for (unsigned int seed = 0; seed < 50; ++seed) { compareReaders(text, seed); }
    }
}

} // namespace
} // namespace zorv
