// SPDX-License-Identifier: Apache-2.0
#include "transport/CliViewer.h"

#include "platform/libtransport/TResult.h"
#include "platform/libtransport/TimeStamp.h"
#include "tests/support/LogCapture.h"
#include "tests/support/errorOf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <locale>
#include <string>

namespace zorv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Row = std::vector<std::string>;

template <class T> std::string cellOf(T const& value) {
    StringVecVec rows;
    CliViewer::accumulateDisplayValue(rows, 0, value);
    return rows.at(0).at(0);
}

TEST(CliViewer, ColumnZeroAlwaysStartsARow) {
    StringVecVec rows;
    CliViewer::accumulateDisplayValue(rows, 0, "a");
    CliViewer::accumulateDisplayValue(rows, 0, "b");
    EXPECT_THAT(rows, ElementsAre(Row{"a"}, Row{"b"}));
}

TEST(CliViewer, AnotherColumnThanZeroGoesIntoTheLastExistingRow) {
    StringVecVec rows{{"first"}, {"last", "row"}};
    CliViewer::accumulateDisplayValue(rows, 2, "cell");
    EXPECT_THAT(rows, ElementsAre(Row{"first"}, Row{"last", "row", "cell"}));
}

TEST(CliViewer, AnotherColumnThanZeroInAnEmptyTableIsRefused) {
    StringVecVec rows;
    EXPECT_THROW(CliViewer::accumulateDisplayValue(rows, 1, "cell"), std::out_of_range);
    EXPECT_THAT(rows, IsEmpty());
}

TEST(CliViewer, RefusesAColumnThatNoRowCanHave) {
    auto const longest = Row().max_size();
    for (auto const column : {longest, std::numeric_limits<std::size_t>::max()}) {
        StringVecVec rows{{"a"}};
        EXPECT_EQ(errorOf([&] { CliViewer::accumulateDisplayValue(rows, column, "cell"); }),
                  "std::out_of_range: accumulateDisplayValue: no row has a column " + std::to_string(column));
        EXPECT_THAT(rows, ElementsAre(Row{"a"}));
    }
}

TEST(CliViewer, AColumnBeyondTheRowGrowsItWithEmptyCells) {
    StringVecVec rows;
    CliViewer::accumulateDisplayValue(rows, 0, "a");
    CliViewer::accumulateDisplayValue(rows, 3, "d");
    EXPECT_THAT(rows, ElementsAre(Row{"a", "", "", "d"}));
}

TEST(CliViewer, WritingTheSameColumnTwiceLeavesTheSecondTextAndOneWarning) {
    LogCapture const log;
    StringVecVec rows;
    CliViewer::accumulateDisplayValue(rows, 0, "a");
    CliViewer::accumulateDisplayValue(rows, 1, "first");
    EXPECT_THAT(log.lines(), IsEmpty());
    CliViewer::accumulateDisplayValue(rows, 1, "second");
    EXPECT_THAT(rows, ElementsAre(Row{"a", "second"}));
    EXPECT_THAT(log.lines(), ElementsAre("WARN accumulateDisplayValue: resetting already set column"));
}

TEST(CliViewer, WritingACellThatWasLeftEmptyIsNoReasonToWarn) {
    LogCapture const log;
    StringVecVec rows;
    CliViewer::accumulateDisplayValue(rows, 0, "a");
    CliViewer::accumulateDisplayValue(rows, 2, "c");
    CliViewer::accumulateDisplayValue(rows, 1, "b");
    CliViewer::accumulateDisplayValue(rows, 0, "");
    EXPECT_THAT(rows, ElementsAre(Row{"a", "b", "c"}, Row{""}));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(CliViewer, TheWarningNamesAFixedPlaceAndTheFullSignature) {
    LogCapture const log;
    StringVecVec rows;
    CliViewer::accumulateDisplayValue(rows, 0, "a");
    CliViewer::accumulateDisplayValue(rows, 1, 1);
    CliViewer::accumulateDisplayValue(rows, 1, 2);
    ASSERT_EQ(log.events().size(), 1U);
    auto const& event = log.events()[0];
    EXPECT_EQ(event.file, "transport/CliViewer");
    EXPECT_EQ(event.line, 125);
    EXPECT_THAT(event.function, HasSubstr("static void zorv::CliViewer::accumulateDisplayValue("));
    EXPECT_THAT(event.function, HasSubstr("T = int"));
}

TEST(CliViewerDeathTest, WarnsInAProcessThatHasNotPreparedTheLog) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // runs this test alone in a process of its own
    auto const warn = [] {
        StringVecVec rows{{"", "set"}};
        CliViewer::accumulateDisplayValue(rows, 1, "again");
        std::_Exit(0);
    };
    EXPECT_EXIT(warn(), testing::ExitedWithCode(0), "WARN accumulateDisplayValue: resetting already set column");
}

TEST(CliViewer, ATextLiteralShowsAsItIs) { EXPECT_EQ(cellOf("a \"b\"\t"), "a \"b\"\t"); }

TEST(CliViewer, ACharacterShowsAsItIs) {
    EXPECT_EQ(cellOf('x'), "x");
    EXPECT_EQ(cellOf(static_cast<signed char>('x')), "x");
}

TEST(CliViewer, ANullTextShowsAsNothing) {
    char const* const none = nullptr;
    EXPECT_EQ(cellOf(none), "");
}

TEST(CliViewer, ATextThroughAPointerShowsAsItIs) {
    char const* const text = "text";
    EXPECT_EQ(cellOf(text), "text");
}

TEST(CliViewer, AStringShowsAsItIs) {
    std::string const text("a\0b", 3);
    EXPECT_EQ(cellOf(text), text);
}

TEST(CliViewer, AnIntShowsAsASignedDecimal) {
    EXPECT_EQ(cellOf(-17), "-17");
    EXPECT_EQ(cellOf(std::numeric_limits<int>::min()), "-2147483648");
}

TEST(CliViewer, AnUnsignedIntShowsAsAnUnsignedDecimal) { EXPECT_EQ(cellOf(4294967295U), "4294967295"); }

TEST(CliViewer, AnUnsignedCharShowsAsAnOctet) {
    EXPECT_EQ(cellOf(static_cast<unsigned char>(0)), "00");
    EXPECT_EQ(cellOf(static_cast<unsigned char>(0xFA)), "fa");
}

TEST(CliViewer, OtherIntegersShowAsDecimals) {
    EXPECT_EQ(cellOf(static_cast<short>(-2)), "-2");
    EXPECT_EQ(cellOf(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

TEST(CliViewer, ADoubleShowsAsAStreamWritesIt) { EXPECT_EQ(cellOf(1.5), "1.5"); }

TEST(CliViewer, BoolShowsAsOneOrZero) {
    EXPECT_EQ(cellOf(true), "1");
    EXPECT_EQ(cellOf(false), "0");
}

TEST(CliViewer, ATimeStampShowsAsItPrintsItself) {
    EXPECT_EQ(cellOf(TimeStamp::parse("2026-01-31T12:34:56.789Z")), "2026-01-31T12:34:56.789Z");
}

TEST(CliViewer, AnEnumerationShowsAsItsText) {
    EXPECT_EQ(cellOf(ZResult::inProgress), "inProgress");
    EXPECT_EQ(cellOf(ZResult::none), "none");
}

TEST(CliViewer, NumbersDoNotDependOnTheLocale) {
    struct Grouping : std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    auto const before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    auto const cell = cellOf(1234567);
    std::locale::global(before);
    EXPECT_EQ(cell, "1234567");
}

/// Shows nothing, and asks for the widths of some columns.
class Viewer : public CliViewer {
public:
    void accumulateDisplay(StringVecVec&) const override {}
    using CliViewer::width;
};

TEST(CliViewer, HasNoWidthsUntilSomeAreAskedFor) { EXPECT_THAT(Viewer().widths(), IsEmpty()); }

TEST(CliViewer, AWidthGrowsTheWidthsWithZeros) {
    Viewer const viewer;
    viewer.width(3, 17);
    EXPECT_THAT(viewer.widths(), ElementsAre(0U, 0U, 0U, 17U));
}

TEST(CliViewer, AWidthOfAColumnThatNoTableCanHaveIsRefused) {
    Viewer const viewer;
    EXPECT_EQ(errorOf([&] { viewer.width(std::numeric_limits<std::size_t>::max(), 1); }),
              "std::out_of_range: width: no row has a column " +
                  std::to_string(std::numeric_limits<std::size_t>::max()));
    EXPECT_THAT(viewer.widths(), IsEmpty());
}

TEST(CliViewer, AWidthLeavesTheOthersAsTheyAre) {
    Viewer const viewer;
    viewer.width(3, 17);
    viewer.width(0, 6);
    viewer.width(3, 12);
    EXPECT_THAT(viewer.widths(), ElementsAre(6U, 0U, 0U, 12U));
}

} // namespace
} // namespace zorv
