// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/TimeStamp.h"

#include <boost/date_time/gregorian/gregorian_types.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <ostream>
#include <stdexcept>

namespace zorv {

namespace {

// Boost's dates do not end in 2038 where time_t has 32 bits. Of them only the calendar's arithmetic is used: a date
// object checks what has been checked here.
using Calendar = boost::gregorian::gregorian_calendar;

constexpr std::int64_t msPerDay = std::int64_t{24} * 60 * 60 * 1000;
constexpr std::int64_t startDay = 2440588; // the calendar's number of 1970-01-01
constexpr int firstYear = 1400;
constexpr std::string_view form = "0000-00-00T00:00:00.000Z";

/// Days since the start of 1970.
std::int64_t daysOf(int year, int month, int day) {
    auto const part = [](int number) { return static_cast<unsigned short>(number); };
    return std::int64_t{Calendar::day_number({part(year), part(month), part(day)})} - startDay;
}

/// The number that the digits of a text make up from `begin` on.
int number(std::string_view text, std::size_t begin, std::size_t digits) {
    int value = 0;
    for (auto i = begin; i < begin + digits; ++i) { value = value * 10 + (text[i] - '0'); }
    return value;
}

void putNumber(char* text, std::size_t begin, std::size_t digits, int value) {
    for (auto i = begin + digits; i-- > begin; value /= 10) { text[i] = static_cast<char>('0' + value % 10); }
}

bool isDay(int year, int month, int day) {
    if (year < firstYear || month < 1 || month > 12 || day < 1) { return false; }
    return day <= Calendar::end_of_month_day(static_cast<unsigned short>(year), static_cast<unsigned short>(month));
}

} // namespace

TimeStamp TimeStamp::now() noexcept {
    auto const sinceStart = std::chrono::system_clock::now().time_since_epoch();
    return TimeStamp(std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

bool TimeStamp::tryParse(std::string_view text, TimeStamp& time) {
    auto const fits = [](char c, char f) { return f == '0' ? c >= '0' && c <= '9' : c == f; };
    bool const hasForm = std::equal(text.begin(), text.end(), form.begin(), form.end(), fits);
    if (hasForm && number(text, 11, 2) < 24 && number(text, 14, 2) < 60 && number(text, 17, 2) < 60) {
        int const year = number(text, 0, 4);
        int const month = number(text, 5, 2);
        int const day = number(text, 8, 2);
        if (!isDay(year, month, day)) { return false; }
        auto const seconds = (number(text, 11, 2) * 60 + number(text, 14, 2)) * 60 + number(text, 17, 2);
        time = TimeStamp(daysOf(year, month, day) * msPerDay + std::int64_t{seconds} * 1000 + number(text, 20, 3));
        return true;
    }
    return false;
}

TimeStamp TimeStamp::parse(std::string const& text) {
    TimeStamp time;
    if (!tryParse(text, time)) { throw std::invalid_argument("not a time stamp: " + text); }
    return time;
}

void TimeStamp::print(std::ostream& os) const { os << toString(*this); }

char* TimeStamp::put(char* at) const {
    auto days = milliseconds_ / msPerDay;
    auto ms = static_cast<int>(milliseconds_ % msPerDay);
    if (ms < 0) {
        ms += static_cast<int>(msPerDay);
        --days;
    }
    static auto const first = daysOf(firstYear, 1, 1);
    static auto const last = daysOf(9999, 12, 31);
    if (days < first || days > last) { throw std::out_of_range("a time stamp outside the years 1400 to 9999"); }
    auto const day = Calendar::from_day_number(static_cast<Calendar::date_int_type>(days + startDay));
    static_assert(form.size() == textSize);
    form.copy(at, form.size());
    putNumber(at, 0, 4, day.year);
    putNumber(at, 5, 2, day.month);
    putNumber(at, 8, 2, day.day);
    putNumber(at, 11, 2, ms / 3'600'000);
    putNumber(at, 14, 2, ms / 60'000 % 60);
    putNumber(at, 17, 2, ms / 1000 % 60);
    putNumber(at, 20, 3, ms % 1000);
    return at + form.size();
}

std::string toString(TimeStamp time) {
    std::array<char, TimeStamp::textSize> text{};
    return {text.data(), time.put(text.data())};
}

} // namespace zorv
