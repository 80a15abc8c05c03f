// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/support/hexDump.h"

#include <gtest/gtest.h>

#include <locale>

namespace zorv {
namespace {

StringVecVec dump(std::vector<unsigned char> const& bytes) {
    StringVecVec rows;
    hexDump(rows, bytes);
    return rows;
}

TEST(HexDump, ShowsNoBytesAsOneRowWithAnOffset) { EXPECT_EQ(dump({}), (StringVecVec{{"Data:", "00:"}})); }

TEST(HexDump, ShowsEightBytesInOneRow) {
    EXPECT_EQ(dump({0, 1, 2, 3, 0x0A, 0x7F, 0x80, 0xFF}), (StringVecVec{{"Data:", "00: 00 01 02 03 0a 7f 80 ff"}}));
}

TEST(HexDump, BeginsASecondRowWithTheNinthByte) {
    EXPECT_EQ(dump({1, 2, 3, 4, 5, 6, 7, 8, 9}),
              (StringVecVec{{"Data:", "00: 01 02 03 04 05 06 07 08"}, {"", "08: 09"}}));
}

TEST(HexDump, AddsNoEmptyRowAfterSixteenBytes) {
    EXPECT_EQ(dump({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}),
              (StringVecVec{{"Data:", "00: 00 01 02 03 04 05 06 07"}, {"", "08: 08 09 0a 0b 0c 0d 0e 0f"}}));
}

TEST(HexDump, WritesOffsetsInDecimal) {
    auto const rows = dump(std::vector<unsigned char>(105, 0xEE));
    ASSERT_EQ(rows.size(), 14U);
    EXPECT_EQ(rows[2], (std::vector<std::string>{"", "16: ee ee ee ee ee ee ee ee"}));
    EXPECT_EQ(rows[13], (std::vector<std::string>{"", "104: ee"}));
}

TEST(HexDump, WritesOffsetsWithoutThousandsSeparatorsInEveryLocale) {
    struct Grouping : std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    auto const before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    auto const rows = dump(std::vector<unsigned char>(1001, 0xEE));
    std::locale::global(before);
    EXPECT_EQ(rows.back(), (std::vector<std::string>{"", "1000: ee"}));
}

TEST(HexDump, AppendsToTheRowsThatAreThere) {
    StringVecVec rows{{"before"}};
    hexDump(rows, {0x2A});
    EXPECT_EQ(rows, (StringVecVec{{"before"}, {"Data:", "00: 2a"}}));
}

} // namespace
} // namespace zorv
