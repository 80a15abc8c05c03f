// SPDX-License-Identifier: Apache-2.0
// Compares the reader with a simple one over a JsonCpp tree. Both must give the same result for every text, good or
// damaged.

#include "tests/support/damagedTexts.h"
#include "tests/support/json.h"
#include "tests/unit/oracle/disagreement.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace zorv {
namespace {

TEST(SerializerOracle, AgreesOnTheGoldenTexts) {
    for (auto const& text : goldenTexts()) {
        for (unsigned int seed = 0; seed < 5; ++seed) {
            EXPECT_EQ(disagreement(text, seed), "");
            EXPECT_EQ(disagreement(toTextBackwards(toJson(text)), seed), "");
        }
    }
}

TEST(SerializerOracle, AgreesOnTextsWithBlanksInEveryPlace) {
    for (auto const& text : goldenTexts()) {
        EXPECT_EQ(disagreement(' ' + toJson(text).toStyledString() + "\t\r\n", 1), "");
    }
}

TEST(SerializerOracle, AgreesOnDamagedTexts) {
    auto const texts = goldenTexts();
    Damage damage(texts, 20261121);
    // `differential` takes as many as one likes; these are for every run, under the sanitizers too.
    for (unsigned int i = 0; i < 4000 && !testing::Test::HasFailure(); ++i) {
        EXPECT_EQ(disagreement(damage.mutant(), i), "");
    }
}

TEST(SerializerOracle, AgreesOnTextsWithStringsOfEveryLengthThatMatters) {
    // From some length on, the end of a string is noted when the text is checked.
    for (std::size_t const length : {0U, 1U, 15U, 16U, 17U, 62U, 63U, 64U, 65U, 66U, 67U, 80U, 200U}) {
        for (std::string const end : {"", "\\n", "\\\"", "\\\\", "\\u00e9x"}) {
            auto const string = '"' + std::string(length, 'k') + end + '"';
            auto const other = '"' + end + std::string(length, 'k') + '"';
            for (unsigned int seed = 0; seed < 20; ++seed) {
                EXPECT_EQ(
                    disagreement('{' + string + ":[" + string + ',' + other + "],\"a\":{},\"b\":" + string + '}', seed),
                    "");
                EXPECT_EQ(
                    disagreement('[' + string + ",[{}," + other + "],{" + other + ":{" + string + ":[]}},0]", seed),
                    "");
            }
        }
    }
}

TEST(SerializerOracle, AgreesOnOddTexts) {
    for (std::string const text :
         {R"({"a\"b":1,"a\\":2,"\u0061":3,"":4})", R"({"a":{"\u005f_bases__":[{"__name__":"A"}]}})",
          R"({"__bases__":[1,[],{"__name__":7},{"v":1,"__name__":"\u0041"},{"__name__":"A"}]})", R"([[],{},[[]],[{}]])",
          R"([0,-0,-0.0,0.0,1e0,0e5,-1,255,256,65536,2147483648,4294967296,9223372036854775808,18446744073709551616])",
          R"([1e308,1e-308,1e-400,-1e-400,4.9e-324,2e-324,123456789012345678901234567890,0.1e-9999999999999999999])",
          R"({"a":1,"\u0061":2})", R"({"\n":1,"\u000A":2})", R"(["\u0000\ud83d\ude00\/"])", "[1e309]", "[1,]", "{,}"}) {
        for (unsigned int seed = 0; seed < 50; ++seed) { EXPECT_EQ(disagreement(text, seed), ""); }
    }
}

} // namespace
} // namespace zorv
