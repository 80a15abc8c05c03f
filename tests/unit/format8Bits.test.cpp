// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/format8Bits.h"

#include "platform/libtransport/format16Bits.h"
#include "platform/libtransport/printOctet.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

namespace zorv {
namespace {

TEST(Format8Bits, GivesTwoLowerCaseHexDigits) {
    EXPECT_EQ(format8Bits(0x00, false), "00");
    EXPECT_EQ(format8Bits(0x0A, false), "0a");
    EXPECT_EQ(format8Bits(0xFF, false), "ff");
}

TEST(Format8Bits, PutsThePrefixBeforeThem) { EXPECT_EQ(format8Bits(0x0A, true), "0x0a"); }

TEST(Format16Bits, GivesFourLowerCaseHexDigits) {
    EXPECT_EQ(format16Bits(0x0000, false), "0000");
    EXPECT_EQ(format16Bits(0x023F, false), "023f");
    EXPECT_EQ(format16Bits(0xFFFF, false), "ffff");
}

TEST(Format16Bits, PutsThePrefixBeforeThem) { EXPECT_EQ(format16Bits(0x023F, true), "0x023f"); }

TEST(PrintOctet, WritesTwoLowerCaseHexDigits) {
    std::ostringstream os;
    printOctet(os, 0x00) << ' ';
    printOctet(os, 0x0A) << ' ';
    printOctet(os, 0xFF);
    EXPECT_EQ(os.str(), "00 0a ff");
}

TEST(PrintOctet, WritesTheSameWhateverTheStreamIsSetTo) {
    std::ostringstream os;
    os << std::uppercase << std::showbase << std::showpos << std::oct << std::left << std::setfill('*');
    printOctet(os, 0xFA);
    EXPECT_EQ(os.str(), "fa");
}

TEST(PrintOctet, LeavesBaseFillAndWidthOfTheStreamAsTheyWere) {
    std::ostringstream os;
    os << std::oct << std::setfill('*') << std::setw(5);
    printOctet(os, 0xFA);
    EXPECT_EQ(os.width(), 5);
    os << 8;
    EXPECT_EQ(os.str(), "fa***10");
}

} // namespace
} // namespace zorv
