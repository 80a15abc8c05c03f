// SPDX-License-Identifier: Apache-2.0
#include "tests/unit/oracle/TreeReader.h"

#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/limits.h"

#include <boost/locale/utf.hpp>

#include <json/reader.h>

#include <charconv>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>

namespace zorv {

namespace {

using limits::maxDepth;
std::string const name = Serializer::name;
std::string const bases = Serializer::bases;

bool isControl(char c) noexcept { return static_cast<unsigned char>(c) < 0x20U; }
bool isAscii(char c) noexcept { return static_cast<unsigned char>(c) < 0x80U; }

/// Steps over one UTF-8 sequence of more than one byte; false where the bytes are not one.
bool skipSequence(char const*& at, char const* end) {
    using Utf8 = boost::locale::utf::utf_traits<char>;
    auto const codePoint = Utf8::decode(at, end);
    return codePoint != boost::locale::utf::illegal && codePoint != boost::locale::utf::incomplete;
}

[[noreturn]] void malformed(std::string const& text, char const* at, std::string const& complaint) {
    std::size_t line = 1;
    char const* lineStart = text.data();
    for (char const* c = text.data(); c != at; ++c) {
        if (*c == '\n') {
            ++line;
            lineStart = c + 1;
        }
    }
    throw SerializerError("malformed text: line " + std::to_string(line) + ", column " +
                          std::to_string(at - lineStart + 1) + ": " + complaint);
}

/// The UTF-16 unit of an escape such as "\u00e9" at `at`; 0, which is no surrogate, where there is none.
unsigned int escapedUnit(char const* at, char const* end) {
    unsigned int unit = 0;
    bool const escape = end - at >= 6 && at[0] == '\\' && at[1] == 'u';
    return escape && std::from_chars(at + 2, at + 6, unit, 16).ptr == at + 6 ? unit : 0;
}

bool isHighSurrogate(unsigned int unit) noexcept { return unit >= 0xD800U && unit < 0xDC00U; }
bool isLowSurrogate(unsigned int unit) noexcept { return unit >= 0xDC00U && unit < 0xE000U; }

/// Steps over the escape that begins with the backslash at `at`; false where half of a surrogate pair stands alone.
bool skipEscape(char const*& at, char const* end) {
    auto const unit = escapedUnit(at, end);
    if (isLowSurrogate(unit)) { return false; }
    if (isHighSurrogate(unit)) {
        at += 6;
        if (!isLowSurrogate(escapedUnit(at, end))) { return false; }
        at += 6;
        return true;
    }
    ++at;
    if (at != end && (*at == '"' || *at == '\\')) { ++at; }
    return true;
}

bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

/// Steps over digits; false where there are none.
bool skipDigits(char const*& at, char const* end) {
    char const* const start = at;
    while (at != end && isDigit(*at)) { ++at; }
    return at != start;
}

/// Steps over the number that begins at `at`; false where it is not written as JSON writes numbers.
bool skipNumber(char const*& at, char const* end) {
    if (*at == '-') { ++at; }
    bool const leadingZero = at != end && *at == '0';
    char const* const start = at;
    if (!skipDigits(at, end) || (leadingZero && at - start > 1)) { return false; }
    if (at != end && *at == '.' && !skipDigits(++at, end)) { return false; }
    if (at == end || (*at != 'e' && *at != 'E')) { return true; }
    ++at;
    if (at != end && (*at == '+' || *at == '-')) { ++at; }
    return skipDigits(at, end);
}

/// Refuses what the JSON parser would let through or meet too late: broken UTF-8, raw control characters and lone
/// surrogates in strings, numbers of a form that JSON does not have, comments and commas in some places, and nesting
/// that would exhaust the stack.
void checkText(std::string const& text) {
    char const* const end = text.data() + text.size();
    bool inString = false;
    bool afterComma = false;
    std::size_t depth = 0;
    for (char const* at = text.data(); at != end;) {
        char const* const start = at;
        if (!isAscii(*at)) {
            if (!skipSequence(at, end)) { malformed(text, start, "not UTF-8"); }
            continue;
        }
        char const c = *at;
        if (inString && c == '\\') {
            if (!skipEscape(at, end)) { malformed(text, start, "half of a surrogate pair"); }
            continue;
        }
        if (!inString && (isDigit(c) || c == '-' || c == '+')) {
            if (!skipNumber(at, end)) { malformed(text, start, "not a number"); }
            afterComma = false;
            continue;
        }
        ++at;
        if (inString) {
            if (isControl(c)) { malformed(text, start, "control character in a string"); }
            if (c == '"') { inString = false; }
        } else if (c == '"') {
            inString = true;
        } else if (c == '{' || c == '[') {
            if (++depth > maxDepth) {
                malformed(text, start, "nested deeper than " + std::to_string(maxDepth) + " levels");
            }
        } else if (c == '}' || c == ']') {
            if (afterComma) { malformed(text, start, "nothing after a comma"); }
            --depth;
        } else if (c == '\0') {
            malformed(text, start, "NUL character");
        } else if (c == '/') {
            malformed(text, start, "comment");
        }
        if (c != ' ' && c != '\t' && c != '\n' && c != '\r') { afterComma = c == ',' && !inString; }
    }
}

/// The parser's first complaint, which comes as "* Line 1, Column 5\n  Missing ...\nSee ...", on one line.
std::string firstComplaint(std::string const& complaints) {
    auto const lineEnd = complaints.find('\n');
    auto const textEnd = complaints.find('\n', lineEnd == std::string::npos ? lineEnd : lineEnd + 1);
    if (lineEnd == std::string::npos || complaints.compare(0, 2, "* ") != 0) { return complaints; }
    auto place = complaints.substr(2, lineEnd - 2);
    for (auto& c : place) {
        if (c == 'L') { c = 'l'; }
        if (c == 'C') { c = 'c'; }
    }
    auto const textStart = complaints.find_first_not_of(' ', lineEnd + 1);
    return place + ": " + complaints.substr(textStart, textEnd - textStart);
}

Json::CharReaderBuilder makeStrictBuilder() {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder.settings_["strictRoot"] = false; // a lone value is refused by whoever wants an object, with a better text
    builder.settings_["skipBom"] = false;
    builder.settings_["stackLimit"] = static_cast<int>(maxDepth) + 1;
    return builder;
}

Json::Value parse(std::string const& text) {
    checkText(text);
    static auto const builder = makeStrictBuilder();
    std::unique_ptr<Json::CharReader> const reader(builder.newCharReader());
    Json::Value root;
    std::string complaints;
    bool good = false;
    try {
        good = reader->parse(text.data(), text.data() + text.size(), &root, &complaints);
    } catch (Json::Exception const& error) { throw SerializerError(std::string("malformed text: ") + error.what()); }
    if (!good) { throw SerializerError("malformed text: " + firstComplaint(complaints)); }
    return root;
}

bool isWholeNumber(Json::Value const& value) {
    return value.type() == Json::intValue || value.type() == Json::uintValue;
}

} // namespace

TreeReader::TreeReader(std::string const& text) : root_(parse(text)), stack_{&root_} {}

Json::Value* TreeReader::pop() noexcept {
    auto* const top = selected();
    if (!stack_.empty()) { stack_.pop_back(); }
    return top;
}

/// Whether the value at this place of the stack is the array of an object's bases.
bool TreeReader::isBases(std::size_t place) const {
    auto const* const object = place > 0 ? stack_[place - 1] : nullptr;
    return object != nullptr && object->isObject() &&
           object->find(bases.data(), bases.data() + bases.size()) == stack_[place];
}

TreeReader& TreeReader::operator>>(char const* key) {
    auto* const top = selected();
    Json::Value* found = nullptr;
    if (top == nullptr) {
        // nothing is found below an absent value
    } else if (top->isObject()) {
        found = const_cast<Json::Value*>(top->find(key, key + std::strlen(key)));
    } else if (top->isArray() && isBases(stack_.size() - 1)) {
        for (auto& entry : *top) {
            auto const* const entryName =
                entry.isObject() ? entry.find(name.data(), name.data() + name.size()) : nullptr;
            if (entryName != nullptr && entryName->isString() && *entryName == key) {
                found = &entry;
                break;
            }
        }
    } else {
        failExpected("object");
    }
    stack_.push_back(found);
    if (found != nullptr && !found->isArray() && key == bases) { failExpected("array"); }
    return *this;
}

TreeReader& TreeReader::operator>>(bool& value) {
    if (skipAbsent()) { return *this; }
    if (!selected()->isBool()) { failExpected("boolean"); }
    value = pop()->asBool();
    return *this;
}

template <class Integer> TreeReader& TreeReader::readInteger(Integer& value, char const* expected) {
    if (skipAbsent()) { return *this; }
    auto const& node = *selected();
    if (!isWholeNumber(node)) { failExpected(expected); }
    bool const inRange = std::numeric_limits<Integer>::is_signed
                             ? node.isInt()
                             : node.isUInt() && node.asUInt() <= std::numeric_limits<Integer>::max();
    if (!inRange) { fail(std::string("expected ") + expected + ", got " + node.asString()); }
    value = static_cast<Integer>(std::numeric_limits<Integer>::is_signed ? static_cast<Json::UInt>(node.asInt())
                                                                         : node.asUInt());
    pop();
    return *this;
}

TreeReader& TreeReader::operator>>(int& value) { return readInteger(value, "int"); }
TreeReader& TreeReader::operator>>(unsigned int& value) { return readInteger(value, "unsigned int"); }
TreeReader& TreeReader::operator>>(unsigned char& value) { return readInteger(value, "unsigned byte"); }
TreeReader& TreeReader::operator>>(unsigned short& value) { return readInteger(value, "unsigned short"); }

TreeReader& TreeReader::operator>>(double& value) {
    if (skipAbsent()) { return *this; }
    auto const& node = *selected();
    if (!isWholeNumber(node) && node.type() != Json::realValue) { failExpected("number"); }
    value = node.asDouble();
    pop();
    return *this;
}

TreeReader& TreeReader::operator>>(std::string& value) {
    if (skipAbsent()) { return *this; }
    value = text();
    pop();
    return *this;
}

std::string TreeReader::text() const {
    if (selected() == nullptr || !selected()->isString()) { failExpected("string"); }
    return selected()->asString();
}

Json::Value const& TreeReader::topNode() {
    auto const* const top = pop();
    return top != nullptr ? *top : Json::Value::nullSingleton();
}

bool TreeReader::skipAbsent() {
    if (selected() != nullptr) { return false; }
    pop();
    return true;
}

bool TreeReader::isNull() const noexcept { return selected() != nullptr && selected()->isNull(); }

bool TreeReader::isArray() const noexcept { return selected() != nullptr && selected()->isArray(); }

std::size_t TreeReader::size() const {
    if (!isArray()) { failExpected("array"); }
    return selected()->size();
}

TreeReader& TreeReader::element(std::size_t index) {
    auto* const array = selected();
    bool const there = isArray() && index < array->size();
    stack_.push_back(there ? &(*array)[static_cast<Json::ArrayIndex>(index)] : nullptr);
    return *this;
}

/// The way from the root to the selection, such as "destinations_[2].nodeId_"; the frames of base classes are left out,
/// since a member's key says enough.
std::string TreeReader::path() const {
    std::string path;
    for (std::size_t i = 1; i < stack_.size(); ++i) {
        auto const* const parent = stack_[i - 1];
        auto const* const child = stack_[i];
        if (parent == nullptr || child == nullptr) { break; }
        if (isBases(i - 1)) { continue; }
        for (auto entry = parent->begin(); entry != parent->end(); ++entry) {
            if (&*entry != child) { continue; }
            if (parent->isArray()) {
                path += '[' + std::to_string(entry.index()) + ']';
            } else if (entry.name() != bases || i + 1 == stack_.size()) {
                path += (path.empty() ? "" : ".") + entry.name();
            }
            break;
        }
    }
    return path;
}

void TreeReader::fail(std::string const& complaint) const {
    auto const where = path();
    throw SerializerError(where.empty() ? complaint : where + ": " + complaint);
}

void TreeReader::failExpected(char const* expected) const {
    auto const type = selected() != nullptr ? selected()->type() : Json::nullValue;
    fail(std::string("expected ") + expected + ", got " + Serializer::toString(type));
}

} // namespace zorv
