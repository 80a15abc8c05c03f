// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Table.h"
#include "tests/scenario/Process.h"
#include "zwave/libquillet/PingMsg.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using namespace scenario;
using namespace zorv;

TEST(ClientTable, ColumnsAreAsWideAsTheirLongestCellAndTwoBlanks) {
    std::ostringstream os;
    Table(os).add({{"a", "bbbb", "c"}, {"aaa", "b", "c"}}, {});
    EXPECT_EQ(os.str(), "a    bbbb  c\naaa  b     c\n");
}

TEST(ClientTable, RequestedWidthIsAMinimum) {
    std::ostringstream os;
    Table(os).add({{"a", "b", "c"}, {"aaaaa", "b", "c"}}, {3, 0, 4});
    EXPECT_EQ(os.str(), "a      b  c\naaaaa  b  c\n");
    os.str("");
    Table(os).add({{"a", "b"}}, {6});
    EXPECT_EQ(os.str(), "a       b\n");
}

TEST(ClientTable, LaterRowsKeepTheColumnsOfTheFirst) {
    std::ostringstream os;
    Table table(os);
    table.add({{"Title", "x"}}, {});
    table.add({{"1", "x"}}, {});
    EXPECT_EQ(os.str(), "Title  x\n1      x\n");
}

TEST(ClientTable, LongerCellWidensItsColumnFromItsRowOn) {
    std::ostringstream os;
    Table table(os);
    table.add({{"1", "x"}}, {});
    table.add({{"12345", "x"}}, {});
    table.add({{"1", "x"}}, {});
    EXPECT_EQ(os.str(), "1  x\n12345  x\n1      x\n");
}

TEST(ClientTable, RowsMayHaveDifferentLengthsAndNoTrailingBlanks) {
    std::ostringstream os;
    Table(os).add({{"a"}, {"a", "b", "", ""}, {}, {"", "b"}}, {5});
    EXPECT_EQ(os.str(), "a\na      b\n\n       b\n");
}

TEST(ClientTable, LineEndsAndTabsShowAsBlanks) {
    std::ostringstream os;
    Table(os).add({{"one\n", "two\nlines", "a\tb\vc\fd\re", "end\r\n"}}, {});
    EXPECT_EQ(os.str(), "one  two lines  a b c d e  end\n");
}

TEST(ClientTable, OtherControlCharactersShowInHexAndAreCountedSo) {
    std::ostringstream os;
    Table(os).add({{"\x1b[31mred", "x"}, {"\xc2\x9b", "\xff"}}, {});
    EXPECT_EQ(os.str(), "\\x1b[31mred  x\n\\xc2\\x9b     \\xff\n");
}

TEST(ClientTable, WidthsCountCharactersAndNotBytes) {
    std::ostringstream os;
    Table(os).add({{"Tür", "x"}, {"door", "x"}}, {});
    EXPECT_EQ(os.str(), "Tür   x\ndoor  x\n");
}

TEST(ClientTable, PingsShowTheirTitlesOnceAndTheirWidths) {
    std::ostringstream os;
    Table table(os);
    auto const ping = PingMsg::create(ZwaveAddress(0xC0FFEE01, 5));
    ping->header(true);
    ping->count(1);
    ping->result(ZResult::success);
    table.add(*ping);
    ping->header(false);
    ping->count(2);
    ping->result(ZResult::nodeNotReached);
    table.add(*ping);
    EXPECT_EQ(os.str(), "Count   Time                      Address     Result             Latency\n"
                        "1       1970-01-01T00:00:00.000Z  c0ffee01:5  success            0\n"
                        "2       1970-01-01T00:00:00.000Z  c0ffee01:5  nodeNotReached     0\n");
}

TEST(ClientTable, SeriesOfPingsAppearsRowByRow) {
    DaemonProcess const daemon;
    Process client(clientCommand(daemon.port(), {"ping", "c0ffee01:1", "--count", "3", "--interval", "0.01"}));
    EXPECT_EQ(client.readLine(), "Count   Time                      Address     Result             Latency");
    for (std::string const count : {"1", "2", "3"}) {
        auto const row = client.readLine();
        EXPECT_EQ(row.substr(0, 8), count + "       ");
        EXPECT_EQ(row.substr(32), "  c0ffee01:1  success            0");
    }
    EXPECT_EQ(client.wait(), 0);
    EXPECT_TRUE(client.restOfOutput().empty());
}

TEST(ClientTable, JsonIsOneLineForEachAnswerAndNothingElse) {
    DaemonProcess const daemon;
    Process client(clientCommand(daemon.port(), {"--json", "ping", "1", "--count", "2", "--interval", "0"}));
    EXPECT_EQ(client.wait(), 0);
    auto const lines = client.restOfOutput();
    ASSERT_EQ(lines.size(), 2U);
    for (auto const& line : lines) {
        EXPECT_EQ(line.find("{\"__name__\":\"zorv::PingMsg\","), 0U);
        std::string const end = "\"destination_\":{\"homeId_\":0,\"nodeId_\":1},\"latencyMs_\":0}";
        EXPECT_EQ(line.substr(line.size() - end.size()), end);
    }
    EXPECT_EQ(client.errors(), "");
}

} // namespace
