// SPDX-License-Identifier: Apache-2.0
#include "bench/codec/headerValues.h"

#include <boost/asio/ip/address.hpp>

#include <array>
#include <charconv>
#include <cstdint>
#include <stdexcept>

namespace bench {

namespace {

constexpr std::string_view timeForm = "0000-00-00T00:00:00.000Z";
constexpr std::string_view uuidForm = "00000000-0000-0000-0000-000000000000";
constexpr std::string_view hexDigits = "0123456789abcdef";
constexpr std::int64_t msPerDay = 86'400'000;

[[noreturn]] void refuse(char const* expected, std::string_view text) {
    throw std::invalid_argument(std::string("expected ") + expected + ", got " + std::string(text));
}

int number(std::string_view text, std::size_t begin, std::size_t digits) {
    int value = 0;
    for (auto const c : text.substr(begin, digits)) { value = value * 10 + (c - '0'); }
    return value;
}

void putNumber(std::string& text, std::size_t begin, std::size_t digits, std::int64_t value) {
    for (auto i = begin + digits; i-- > begin; value /= 10) { text[i] = static_cast<char>('0' + value % 10); }
}

bool hasForm(std::string_view text, std::string_view form) {
    if (text.size() != form.size()) { return false; }
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (form[i] == '0' ? text[i] < '0' || text[i] > '9' : text[i] != form[i]) { return false; }
    }
    return true;
}

/// Days from 1970-01-01 on in the Gregorian calendar, whose years here begin with March.
std::int64_t daysOf(int year, int month, int day) {
    year -= month < 3 ? 1 : 0;
    int const dayOfYear = (153 * (month + (month < 3 ? 9 : -3)) + 2) / 5 + day - 1;
    return std::int64_t{365} * year + year / 4 - year / 100 + year / 400 + dayOfYear - 719'468;
}

struct Date {
    int year;
    int month;
    int day;
};

Date dateOf(std::int64_t days) {
    days += 719'468;
    auto const era = days / 146'097;
    auto const dayOfEra = days % 146'097;
    auto const yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36'524 - dayOfEra / 146'096) / 365;
    auto const dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    auto const fromMarch = (5 * dayOfYear + 2) / 153;
    auto const month = static_cast<int>(fromMarch < 10 ? fromMarch + 3 : fromMarch - 9);
    return {static_cast<int>(yearOfEra + era * 400) + (month < 3 ? 1 : 0), month,
            static_cast<int>(dayOfYear - (153 * fromMarch + 2) / 5 + 1)};
}

int daysInMonth(int year, int month) {
    constexpr std::array<int, 12> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    bool const leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    return days.at(static_cast<std::size_t>(month - 1)) + (month == 2 && leap ? 1 : 0);
}

unsigned int hexValue(char c) {
    if (c >= '0' && c <= '9') { return static_cast<unsigned int>(c - '0'); }
    if (c >= 'a' && c <= 'f') { return static_cast<unsigned int>(c - 'a' + 10); }
    return 16;
}

} // namespace

void parseText(std::string_view text, zorv::TimeStamp& value) {
    if (!hasForm(text, timeForm)) { refuse("time stamp", text); }
    int const year = number(text, 0, 4);
    int const month = number(text, 5, 2);
    int const day = number(text, 8, 2);
    int const hour = number(text, 11, 2);
    int const minute = number(text, 14, 2);
    int const second = number(text, 17, 2);
    bool const inCalendar = month >= 1 && month <= 12 && day >= 1 && day <= daysInMonth(year, month);
    if (!inCalendar || year < 1400 || hour > 23 || minute > 59 || second > 59) { refuse("time stamp", text); }
    value = zorv::TimeStamp(daysOf(year, month, day) * msPerDay +
                            std::int64_t{(hour * 60 + minute) * 60 + second} * 1000 + number(text, 20, 3));
}

void parseText(std::string_view text, boost::uuids::uuid& value) {
    if (text.size() != uuidForm.size()) { refuse("UUID", text); }
    std::size_t at = 0;
    for (auto& byte : value) {
        if (uuidForm[at] == '-' && text[at++] != '-') { refuse("UUID", text); }
        auto const high = hexValue(text[at]);
        auto const low = hexValue(text[at + 1]);
        if (high > 15 || low > 15) { refuse("UUID", text); }
        byte = static_cast<std::uint8_t>(high << 4U | low);
        at += 2;
    }
}

void parseText(std::string_view text, boost::asio::ip::tcp::endpoint& value) {
    auto const colon = text.rfind(':');
    unsigned short port = 0;
    auto const* const end = text.data() + text.size();
    boost::system::error_code error;
    auto const host = text.substr(0, colon);
    // The sources of the samples are IPv4; brackets would not parse.
    auto const address = boost::asio::ip::make_address_v4(std::string(host), error);
    if (error || colon == std::string_view::npos || std::from_chars(text.data() + colon + 1, end, port).ptr != end) {
        refuse("TCP endpoint", text);
    }
    value = {address, port};
}

std::string textOf(zorv::TimeStamp value) {
    auto const date = dateOf(value.milliseconds() / msPerDay);
    auto const ms = value.milliseconds() % msPerDay;
    std::string text(timeForm);
    putNumber(text, 0, 4, date.year);
    putNumber(text, 5, 2, date.month);
    putNumber(text, 8, 2, date.day);
    putNumber(text, 11, 2, ms / 3'600'000);
    putNumber(text, 14, 2, ms / 60'000 % 60);
    putNumber(text, 17, 2, ms / 1000 % 60);
    putNumber(text, 20, 3, ms % 1000);
    return text;
}

std::string textOf(boost::uuids::uuid const& value) {
    std::string text(uuidForm);
    std::size_t at = 0;
    for (auto const byte : value) {
        if (uuidForm[at] == '-') { ++at; }
        text[at++] = hexDigits[byte >> 4U];
        text[at++] = hexDigits[byte & 15U];
    }
    return text;
}

std::string textOf(boost::asio::ip::tcp::endpoint const& value) {
    return value.address().to_string() + ':' + std::to_string(value.port());
}

} // namespace bench
