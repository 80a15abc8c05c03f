// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/json/toJsonValue.h"

#include "platform/libtransport/json/numbers.h"
#include "platform/libtransport/json/scan.h"
#include "platform/libtransport/json/strings.h"

#include <charconv>
#include <cstdint>
#include <string>
#include <system_error>

namespace zorv {

namespace {

using scan::skipBlanks;

template <class Integer> bool parseWhole(std::string_view number, Integer& value) {
    auto const* const end = number.data() + number.size();
    auto const parsed = std::from_chars(number.data(), end, value);
    return parsed.ec == std::errc() && parsed.ptr == end;
}

Json::Value numberAt(std::string_view number) {
    std::int64_t whole = 0;
    std::uint64_t large = 0;
    if (parseWhole(number, whole)) { return Json::Value(Json::Int64(whole)); }
    if (parseWhole(number, large)) { return Json::Value(Json::UInt64(large)); }
    return Json::Value(toDouble(number));
}

/// Builds values from their text; each call steps over what it has read.
class Builder {
public:
    Builder(char const* at, char const* end) : at_(at), end_(end) {}

    Json::Value value() {
        switch (*at_) {
        case '{': return object();
        case '[': return array();
        case '"': return Json::Value(string());
        default: return scalar();
        }
    }

private:
    Json::Value object() {
        Json::Value value(Json::objectValue);
        for (char c = step(); c != '}'; c = next()) {
            auto const key = string();
            at_ = skipBlanks(at_);
            step(); // over the colon
            value[key] = this->value();
        }
        ++at_;
        return value;
    }

    Json::Value array() {
        Json::Value value(Json::arrayValue);
        for (char c = step(); c != ']'; c = next()) { value.append(this->value()); }
        ++at_;
        return value;
    }

    /// Steps over a bracket, a colon or a comma; gives the character that comes next.
    char step() {
        at_ = skipBlanks(at_ + 1);
        return *at_;
    }

    /// Steps behind a value to the next one, or to the bracket behind the last.
    char next() {
        at_ = skipBlanks(at_);
        return *at_ == ',' ? step() : *at_;
    }

    std::string string() {
        auto const* const begin = ++at_;
        while (*(at_ = scan::findQuoteOrEscape(at_, end_)) == '\\') { at_ += 2; }
        std::string text;
        appendUnescaped(text, {begin, static_cast<std::size_t>(at_++ - begin)});
        return text;
    }

    Json::Value scalar() {
        auto const* const begin = at_;
        at_ = skipScalar(at_, end_);
        switch (*begin) {
        case 't': return Json::Value(true);
        case 'f': return Json::Value(false);
        case 'n': return Json::Value();
        default: return numberAt({begin, static_cast<std::size_t>(at_ - begin)});
        }
    }

    char const* at_;
    char const* end_;
};

} // namespace

Json::ValueType typeAt(char const* at) {
    switch (*at) {
    case '{': return Json::objectValue;
    case '[': return Json::arrayValue;
    case '"': return Json::stringValue;
    case 't':
    case 'f': return Json::booleanValue;
    case 'n': return Json::nullValue;
    default: return numberAt({at, static_cast<std::size_t>(skipNumber(at) - at)}).type();
    }
}

char const* skipScalar(char const* at, char const* end) {
    while (at != end && *at != ',' && *at != ']' && *at != '}' && !scan::isBlank(*at)) { ++at; }
    return at;
}

Json::Value toJsonValue(char const* at, char const* end) { return Builder(at, end).value(); }

} // namespace zorv
