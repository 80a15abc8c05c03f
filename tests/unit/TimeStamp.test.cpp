// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/TimeStamp.h"

#include "tests/support/errorOf.h"
#include "tests/support/shown.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>

namespace zorv {
namespace {

constexpr std::int64_t day = 24 * 60 * 60 * std::int64_t(1000);

TEST(TimeStamp, IsTheStartOf1970ByDefault) {
    EXPECT_EQ(TimeStamp().milliseconds(), 0);
    EXPECT_EQ(toString(TimeStamp()), "1970-01-01T00:00:00.000Z");
}

TEST(TimeStamp, IsWrittenWithMilliseconds) {
    EXPECT_EQ(toString(TimeStamp(1769862896789)), "2026-01-31T12:34:56.789Z");
    EXPECT_EQ(toString(TimeStamp(1)), "1970-01-01T00:00:00.001Z");
    EXPECT_EQ(toString(TimeStamp(-1)), "1969-12-31T23:59:59.999Z");
}

TEST(TimeStamp, PrintsTheSameText) { EXPECT_EQ(printed(TimeStamp(1769862896789)), "2026-01-31T12:34:56.789Z"); }

TEST(TimeStamp, IsReadFromItsText) {
    EXPECT_EQ(TimeStamp::parse("2026-01-31T12:34:56.789Z").milliseconds(), 1769862896789);
    EXPECT_EQ(TimeStamp::parse("1969-12-31T23:59:59.999Z").milliseconds(), -1);
}

TEST(TimeStamp, KnowsLeapYears) {
    EXPECT_EQ(TimeStamp::parse("2024-03-01T00:00:00.000Z").milliseconds() -
                  TimeStamp::parse("2024-02-29T00:00:00.000Z").milliseconds(),
              day);
    EXPECT_EQ(TimeStamp::parse("2100-03-01T00:00:00.000Z").milliseconds() -
                  TimeStamp::parse("2100-02-28T00:00:00.000Z").milliseconds(),
              day);
}

TEST(TimeStamp, ReachesBeyondSecondsOf32Bits) {
    EXPECT_EQ(toString(TimeStamp(2147483648000)), "2038-01-19T03:14:08.000Z");
    EXPECT_EQ(TimeStamp::parse("2106-02-07T06:28:16.000Z").milliseconds(), 4294967296000);
}

TEST(TimeStamp, ReachesFrom1400To9999) {
    for (auto const* const text : {"1400-01-01T00:00:00.000Z", "9999-12-31T23:59:59.999Z"}) {
        EXPECT_EQ(toString(TimeStamp::parse(text)), text);
    }
}

TEST(TimeStamp, CannotBeWrittenBefore1400OrAfter9999) {
    auto const first = TimeStamp::parse("1400-01-01T00:00:00.000Z").milliseconds();
    auto const last = TimeStamp::parse("9999-12-31T23:59:59.999Z").milliseconds();
    using Limits = std::numeric_limits<std::int64_t>;
    for (auto const ms : {first - 1, last + 1, Limits::min(), Limits::max(), day << 32}) {
        EXPECT_THROW(toString(TimeStamp(ms)), std::out_of_range) << ms;
    }
}

TEST(TimeStamp, RefusesEveryOtherText) {
    for (auto const* const text : {"", "now", "2026-01-31", "2026-01-31T12:34:56Z", "2026-01-31T12:34:56.789",
                                   "2026-01-31T12:34:56.7890Z", "2026-01-31 12:34:56.789Z", "2026-01-31t12:34:56.789z",
                                   " 2026-01-31T12:34:56.789Z", "2026-01-31T12:34:56.789Z ", "2026-01-31T12:34:56,789Z",
                                   "2026-1-31T12:34:56.789Z", "+026-01-31T12:34:56.789Z", "2026-01-31T12:34:56.789+"}) {
        EXPECT_THROW(TimeStamp::parse(text), std::invalid_argument) << text;
    }
}

TEST(TimeStamp, RefusesDaysAndTimesThatDoNotExist) {
    for (auto const* const text : {"2026-13-01T00:00:00.000Z", "2026-00-01T00:00:00.000Z", "2026-02-29T00:00:00.000Z",
                                   "2026-01-00T00:00:00.000Z", "2026-01-32T00:00:00.000Z", "2026-01-31T24:00:00.000Z",
                                   "2026-01-31T12:60:00.000Z", "2026-01-31T12:00:60.000Z", "1399-12-31T23:59:59.999Z",
                                   "0000-00-00T00:00:00.000Z"}) {
        EXPECT_THROW(TimeStamp::parse(text), std::invalid_argument) << text;
    }
}

TEST(TimeStamp, NamesTheTextThatItRefuses) {
    EXPECT_EQ(errorOf([] { TimeStamp::parse("soon"); }), "std::invalid_argument: not a time stamp: soon");
}

TEST(TimeStamp, NowIsTheTimeOfTheSystemClock) {
    auto const clock = [] {
        auto const sinceStart = std::chrono::system_clock::now().time_since_epoch();
        return std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count();
    };
    auto const before = clock();
    auto const now = TimeStamp::now().milliseconds();
    EXPECT_LE(before, now);
    EXPECT_LE(now, clock());
}

TEST(TimeStamp, IsOrderedByTime) {
    EXPECT_LT(TimeStamp(1), TimeStamp(2));
    EXPECT_FALSE(TimeStamp(2) < TimeStamp(2));
    EXPECT_EQ(TimeStamp(2), TimeStamp(2));
    EXPECT_NE(TimeStamp(1), TimeStamp(2));
}

} // namespace
} // namespace zorv
