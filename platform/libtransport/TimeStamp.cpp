#include "platform/libtransport/TimeStamp.h"

#include <boost/date_time/posix_time/posix_time.hpp>

#include <algorithm>
#include <chrono>
#include <ostream>
#include <stdexcept>

namespace zorv {

namespace {

using boost::posix_time::ptime;

// Boost's dates do not end in 2038 where time_t has 32 bits.
ptime const& start() {
    static ptime const start(boost::gregorian::date(1970, 1, 1));
    return start;
}

} // namespace

TimeStamp TimeStamp::now() noexcept {
    auto const sinceStart = std::chrono::system_clock::now().time_since_epoch();
    return TimeStamp(std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

TimeStamp TimeStamp::parse(std::string const& text) {
    std::string const form = "0000-00-00T00:00:00.000Z";
    auto const fits = [](char c, char f) { return f == '0' ? c >= '0' && c <= '9' : c == f; };
    if (!std::equal(text.begin(), text.end(), form.begin(), form.end(), fits)) {
        throw std::invalid_argument("not a time stamp: " + text);
    }
    try {
        auto const time = boost::posix_time::from_iso_extended_string(text.substr(0, text.size() - 1));
        TimeStamp const stamp((time - start()).total_milliseconds());
        // An hour of 24 or a second of 60 would be carried over silently.
        if (toString(stamp) == text) { return stamp; }
    } catch (std::exception const&) { // a month of 13, say: reported below like every other bad text
    }
    throw std::invalid_argument("not a time stamp: " + text);
}

void TimeStamp::print(std::ostream& os) const { os << toString(*this); }

std::string toString(TimeStamp time) {
    auto const text = to_iso_extended_string(start() + boost::posix_time::milliseconds(time.milliseconds()));
    // Fractions come with six digits, or not at all where they are zero.
    auto const point = text.find('.');
    return text.substr(0, point) + (point == std::string::npos ? ".000" : text.substr(point, 4)) + 'Z';
}

} // namespace zorv
