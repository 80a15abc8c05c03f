// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/ObjectReaderImpl.h"

#include <json/reader.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>

namespace zorv::modulesim {

namespace {

bool isHex(std::string const& digits, std::size_t count) {
    return digits.size() == count && digits.find_first_not_of("0123456789abcdef") == std::string::npos;
}

std::string textOf(Json::Value const& value) { return value.isString() ? value.asString() : std::string(); }

} // namespace

JsonText readJsonText(std::string const& file) {
    errno = 0;
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    // A directory opens, and fails when it is read.
    if (!in || !(text << in.rdbuf())) {
        throw std::runtime_error(file + ": cannot be read" +
                                 (errno != 0 ? std::string(": ") + std::strerror(errno) : ""));
    }
    return {file, text.str()};
}

Json::Value parseJson(JsonText const& source) {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    std::unique_ptr<Json::CharReader> const parser(builder.newCharReader());
    Json::Value root;
    std::string complaints;
    auto const& text = source.text;
    try {
        if (parser->parse(text.data(), text.data() + text.size(), &root, &complaints)) { return root; }
    } catch (Json::Exception const& error) { complaints = error.what(); }
    // The parser's "* Line 3, Column 5\n  Missing ..." on one line.
    std::istringstream words(complaints.substr(complaints.compare(0, 2, "* ") == 0 ? 2 : 0));
    std::string complaint;
    for (std::string word; words >> word;) { complaint += ' ' + word; }
    throw std::runtime_error(source.file + ":" + complaint);
}

ObjectReader::ObjectReader(Json::Value const& object, std::string path, JsonText const& source)
    : object_(object), path_(std::move(path)), source_(source) {
    if (!object.isObject()) { fail(object, "", "expected an object"); }
}

ObjectReader ObjectReader::object(Json::Value const& value, std::string const& path) const {
    return {value, path_.empty() ? path : path_ + '.' + path, source_};
}

// ---- members

void ObjectReader::time(char const* key, std::uint32_t highest, Milliseconds& value) {
    auto count = static_cast<std::uint32_t>(value.count());
    number(key, 0, highest, count);
    value = Milliseconds(count);
}

void ObjectReader::share(char const* key, double& value) {
    auto const* const member = find(key);
    if (member == nullptr) { return; }
    if (!member->isDouble() || member->asDouble() < 0 || member->asDouble() > 1) {
        fail(*member, key, "expected a number from 0 to 1");
    }
    value = member->asDouble();
}

void ObjectReader::flag(char const* key, bool& value) {
    auto const* const member = find(key);
    if (member == nullptr) { return; }
    if (!member->isBool()) { fail(*member, key, "expected true or false"); }
    value = member->asBool();
}

void ObjectReader::text(char const* key, std::size_t longest, std::string& value) {
    auto const* const member = find(key);
    if (member == nullptr) { return; }
    auto text = textOf(*member);
    if (text.empty() || text.size() > longest) {
        fail(*member, key, "expected a text of 1 to " + std::to_string(longest) + " bytes");
    }
    value = std::move(text);
}

void ObjectReader::homeId(char const* key, std::uint32_t& value) {
    auto const& member = require(key);
    constexpr std::size_t digits = 8;
    if (!isHex(textOf(member), digits) || textOf(member) == "00000000") {
        fail(member, key, "expected eight lower-case hex digits, not all 0");
    }
    hex(key, value);
}

std::uint32_t ObjectReader::toNumber(Json::Value const& value, std::string const& path, std::uint32_t lowest,
                                     std::uint32_t highest) const {
    if (!value.isUInt() || value.asUInt() < lowest || value.asUInt() > highest) {
        fail(value, path, "expected a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
    }
    return value.asUInt();
}

std::uint32_t ObjectReader::toHex(Json::Value const& value, std::string const& path, std::size_t digits) const {
    constexpr int base = 16;
    auto const text = textOf(value);
    if (!isHex(text, digits)) {
        fail(value, path,
             std::string("expected ") + (digits == 2 ? "two" : "four") + " lower-case hex digits in a text");
    }
    return static_cast<std::uint32_t>(std::stoul(text, nullptr, base));
}

// ---- which there are

Json::Value const* ObjectReader::find(char const* key) {
    known_.insert(key);
    return object_.find(key, key + std::strlen(key));
}

Json::Value const& ObjectReader::require(char const* key) {
    auto const* const member = find(key);
    if (member == nullptr) { fail(object_, key, "is missing"); }
    return *member;
}

void ObjectReader::refuseOthers() const {
    for (auto const& key : object_.getMemberNames()) {
        if (known_.count(key) == 0) { fail(object_[key], key, "is not known here"); }
    }
}

void ObjectReader::fail(Json::Value const& where, std::string const& path, std::string const& complaint) const {
    auto const end = source_.text.begin() + where.getOffsetStart();
    auto const line = std::count(source_.text.begin(), end, '\n') + 1;
    auto const whole = path_.empty() || path.empty() ? path_ + path : path_ + "." + path;
    throw std::runtime_error(source_.file + ":" + std::to_string(line) + ": " + (whole.empty() ? "" : whole + ": ") +
                             complaint);
}

} // namespace zorv::modulesim
