// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Table.h"
#include "apps/quillet/displayWidth.h"
#include "tests/scenario/Process.h"
#include "tests/scenario/TerminalProcess.h"
#include "tests/testPaths.h"
#include "zwave/libquillet/PingMsg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

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

TEST(ClientTable, WideAndCombiningCharactersTakeTheColumnsThatTheTerminalGivesThem) {
    std::ostringstream os;
    Table(os).add({{"门锁", "x"}, {"re\u0301sume\u0301", "x"}, {"lock", "x"}}, {});
    EXPECT_EQ(os.str(), "门锁    x\nre\u0301sume\u0301  x\nlock    x\n");
}

/// A terminal of so many columns, on which nobody reads.
class WindowOf {
public:
    explicit WindowOf(unsigned short columns) {
        winsize size{};
        size.ws_col = columns;
        if (::openpty(&master_, &slave_, nullptr, nullptr, &size) != 0) { throw std::runtime_error("no terminal"); }
    }
    ~WindowOf() {
        ::close(master_);
        ::close(slave_);
    }
    WindowOf(WindowOf const&) = delete;
    WindowOf& operator=(WindowOf const&) = delete;

    Terminal terminal() const { return Terminal(slave_); }

    void resize(unsigned short columns) const {
        winsize size{};
        size.ws_col = columns;
        ::ioctl(master_, TIOCSWINSZ, &size);
    }

private:
    int master_ = -1;
    int slave_ = -1;
};

TEST(ClientTable, WidestColumnsAreCutToFitTheTerminal) {
    WindowOf const window(20);
    std::ostringstream os;
    Table(os, window.terminal()).add({{"a", "0123456789012345", "xyz"}, {"a", "short", "xyz"}}, {});
    EXPECT_EQ(os.str(), "a  01234567890…  xyz\na  short         xyz\n");
}

TEST(ClientTable, CutStandsBeforeAWideCharacterThatHasNoRoom) {
    WindowOf const window(4);
    std::ostringstream os;
    Table(os, window.terminal()).add({{"门锁门"}}, {});
    EXPECT_EQ(os.str(), "门…\n");
}

TEST(ClientTable, WidthOfTheTerminalIsAskedForEachRow) {
    WindowOf const window(6);
    std::ostringstream os;
    Table table(os, window.terminal());
    table.add({{"0123456789"}}, {});
    window.resize(8);
    table.add({{"0123456789"}}, {});
    EXPECT_EQ(os.str(), "01234…\n0123456…\n");
}

TEST(ClientTable, NaturalWidthIsNeverCut) {
    WindowOf const window(6);
    std::ostringstream os;
    Table(os, window.terminal(), Table::Width::natural).add({{"0123456789", "x"}}, {});
    EXPECT_EQ(os.str(), "0123456789  x\n");
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

TEST(ClientTable, SeriesOfPingsHasItsTitlesOnceAndARowForEach) {
    DaemonProcess const daemon;
    Process client(clientCommand(daemon.port(), {"ping", "c0ffee01:1", "--count", "3", "--interval", "0.01"}));
    EXPECT_EQ(client.readLine(), "Count   Time                      Address     Result             Latency");
    for (std::string const count : {"1", "2", "3"}) {
        auto const row = client.readLine();
        EXPECT_EQ(row.substr(0, 8), count + "       ");
        EXPECT_EQ(row.substr(32), "  c0ffee01:1  success            0");
    }
    EXPECT_EQ(client.wait(), 0);
    EXPECT_EQ(client.restOfOutput(), std::vector<std::string>{"3 sent, 3 answered, 0 lost; min/avg/max 0/0/0 ms"});
}

TEST(ClientTable, SummaryOfPingsTellsTheLostOnes) {
    DaemonProcess const daemon;
    Process client(clientCommand(daemon.port(), {"ping", "99", "--no-header", "--count", "2", "--interval", "0"}));
    EXPECT_EQ(client.wait(), 1);
    EXPECT_THAT(client.restOfOutput(), testing::ElementsAre(testing::StartsWith("1  "), testing::StartsWith("2  "),
                                                            "2 sent, 0 answered, 2 lost"));
}

// ---- on a terminal

TEST(ClientTable, ColourTellsTheStateOnATerminalOnly) {
    DaemonProcess const daemon;
    std::vector<std::string> const words = clientCommand(daemon.port(), {"ping", "99", "--count", "1"});
    TerminalProcess shown(words);
    EXPECT_EQ(shown.wait(), 1);
    EXPECT_THAT(shown.shown(), testing::HasSubstr("\x1b[31mnodeNotFound\x1b[0m"));
    for (auto const* const setting : {"NO_COLOR=1", "TERM=dumb"}) {
        TerminalProcess plain(words, 80, {setting});
        EXPECT_EQ(plain.wait(), 1);
        EXPECT_THAT(plain.shown(), testing::HasSubstr("  nodeNotFound  "));
        EXPECT_THAT(plain.shown(), testing::Not(testing::HasSubstr("\x1b[")));
    }
    Process piped(words);
    EXPECT_EQ(piped.wait(), 1);
    EXPECT_THAT(piped.restOfOutput(), testing::Not(testing::Contains(testing::HasSubstr("\x1b["))));
}

TEST(ClientTable, TableFollowsTheTerminalAndWideDoesNot) {
    TerminalProcess narrow({programPath("quillet"), "catalogue"}, 40);
    EXPECT_EQ(narrow.wait(), 0);
    std::istringstream lines(narrow.shown());
    for (std::string line; std::getline(lines, line);) { EXPECT_LE(displayWidth(line), 41U) << line; } // with its \r
    EXPECT_THAT(narrow.shown(), testing::HasSubstr("…"));
    TerminalProcess wide({programPath("quillet"), "--output", "wide", "catalogue"}, 40);
    EXPECT_EQ(wide.wait(), 0);
    EXPECT_THAT(wide.shown(), testing::Not(testing::HasSubstr("…")));
}

TEST(ClientTable, ColumnsOfTheEnvironmentCountWhereTheTerminalDoesNotTellItsWidth) {
    TerminalProcess console({programPath("quillet"), "catalogue"}, 0, {"COLUMNS=30"});
    EXPECT_EQ(console.wait(), 0);
    EXPECT_THAT(console.shown(), testing::HasSubstr("…"));
}

// ---- other forms

TEST(ClientTable, HeaderIsLeftOutOnRequest) {
    DaemonProcess const daemon;
    auto const linesOf = [&daemon](std::vector<std::string> const& words) {
        Process client(clientCommand(daemon.port(), words));
        EXPECT_EQ(client.wait(), 0);
        return client.restOfOutput();
    };
    auto const withTitles = linesOf({"nodes"});
    auto const without = linesOf({"--no-header", "nodes"});
    ASSERT_THAT(withTitles, testing::SizeIs(without.size() + 1));
    EXPECT_THAT(withTitles.front(), testing::StartsWith("NodeId"));
    EXPECT_THAT(without, testing::Each(testing::Not(testing::HasSubstr("NodeId"))));
    EXPECT_THAT(linesOf({"catalogue", "--no-header"}), testing::SizeIs(linesOf({"catalogue"}).size() - 1));
}

TEST(ClientTable, OutputTakesItsFormByName) {
    auto const run = [](std::vector<std::string> words) {
        words.insert(words.begin(), programPath("quillet"));
        Process client(words);
        EXPECT_EQ(client.wait(), words.size() > 4 ? 2 : 0);
        return client.restOfOutput();
    };
    EXPECT_EQ(run({"catalogue", "--output", "json"}), run({"catalogue", "--json"}));
    EXPECT_EQ(run({"catalogue", "--output", "table"}), run({"catalogue"}));
    EXPECT_THAT(run({"catalogue", "--json", "--output", "json"}), testing::IsEmpty());
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
