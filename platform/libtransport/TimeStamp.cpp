// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/TimeStamp.h"

#include <boost/date_time/gregorian/gregorian_types.hpp>

#include <algorithm>
#include <chrono>
#include <ostream>
#include <stdexcept>

namespace zorv {

namespace {

using boost::gregorian::date;

constexpr std::int64_t msPerDay = std::int64_t{24} * 60 * 60 * 1000;
constexpr char const* form = "0000-00-00T00:00:00.000Z";

// Boost's dates do not end in 2038 where time_t has 32 bits.
date start() { return {1970, 1, 1}; }

/// The number that the digits of a text make up from `begin` on.
int number(std::string const& text, std::size_t begin, std::size_t digits) {
    int value = 0;
    for (auto i = begin; i < begin + digits; ++i) { value = value * 10 + (text[i] - '0'); }
    return value;
}

void putNumber(std::string& text, std::size_t begin, std::size_t digits, std::int64_t value) {
    for (auto i = begin + digits; i-- > begin; value /= 10) { text[i] = static_cast<char>('0' + value % 10); }
}

} // namespace

TimeStamp TimeStamp::now() noexcept {
    auto const sinceStart = std::chrono::system_clock::now().time_since_epoch();
    return TimeStamp(std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

TimeStamp TimeStamp::parse(std::string const& text) {
    std::string const wanted = form;
    auto const fits = [](char c, char f) { return f == '0' ? c >= '0' && c <= '9' : c == f; };
    bool const hasForm = std::equal(text.begin(), text.end(), wanted.begin(), wanted.end(), fits);
    if (hasForm && number(text, 11, 2) < 24 && number(text, 14, 2) < 60 && number(text, 17, 2) < 60) {
        auto const part = [&text](std::size_t begin, std::size_t digits) {
            return static_cast<unsigned short>(number(text, begin, digits));
        };
        try {
            auto const days = (date(part(0, 4), part(5, 2), part(8, 2)) - start()).days();
            auto const seconds = (number(text, 11, 2) * 60 + number(text, 14, 2)) * 60 + number(text, 17, 2);
            return TimeStamp(days * msPerDay + std::int64_t{seconds} * 1000 + number(text, 20, 3));
        } catch (std::out_of_range const&) { // a day that no calendar has
        }
    }
    throw std::invalid_argument("not a time stamp: " + text);
}

void TimeStamp::print(std::ostream& os) const { os << toString(*this); }

std::string toString(TimeStamp time) {
    auto days = time.milliseconds() / msPerDay;
    auto ms = time.milliseconds() % msPerDay;
    if (ms < 0) {
        ms += msPerDay;
        --days;
    }
    static auto const first = (date(boost::gregorian::min_date_time) - start()).days();
    static auto const last = (date(boost::gregorian::max_date_time) - start()).days();
    if (days < first || days > last) { throw std::out_of_range("a time stamp outside the years 1400 to 9999"); }
    auto const day = (start() + boost::gregorian::days(static_cast<long>(days))).year_month_day();
    std::string text = form;
    putNumber(text, 0, 4, day.year);
    putNumber(text, 5, 2, day.month);
    putNumber(text, 8, 2, day.day);
    putNumber(text, 11, 2, ms / 3'600'000);
    putNumber(text, 14, 2, ms / 60'000 % 60);
    putNumber(text, 17, 2, ms / 1000 % 60);
    putNumber(text, 20, 3, ms % 1000);
    return text;
}

} // namespace zorv
