// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/SerialRegistrar.h"
#include "platform/libtransport/Serializable.h"
#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/json/checkText.h"
#include "platform/libtransport/json/numbers.h"
#include "platform/libtransport/json/scan.h"
#include "platform/libtransport/json/strings.h"
#include "platform/libtransport/json/toJsonValue.h"
#include "platform/libtransport/limits.h"
#include "platform/libtransport/throwInvalidEnum.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <system_error>
#include <utility>

// The reader. Values that are read in the order of the text are found without a search: a selected object or array
// remembers where its next member or element begins, and checkText() has noted where objects and arrays end. All text
// has been checked, so that no step asks whether the grammar holds.

namespace zorv {

namespace {

using scan::skipBlanks;

std::string_view between(char const* begin, char const* end) noexcept {
    return {begin, static_cast<std::size_t>(end - begin)};
}

} // namespace

Serializer::Serializer(std::string text) : reading_(true), text_(std::move(text)) { check(text_); }

Serializer::Serializer(InPlace, std::string const& text) : reading_(true) { check(text); }

void Serializer::check(std::string const& text) {
    auto shape = checkText(text);
    begin_ = text.data();
    end_ = begin_ + text.size();
    extents_ = std::move(shape.extents);
    stack_.reserve(shape.depth + 4); // a value in the innermost array, and a few that are absent
    rewind();
}

// ---- the stack

Serializer::Place const* Serializer::selected() const noexcept {
    return stack_.empty() || stack_.back().value.isNowhere() ? nullptr : &stack_.back();
}

bool Serializer::is(char bracket) const noexcept {
    auto const* const place = selected();
    return place != nullptr && *at(place->value) == bracket;
}

Serializer::Place Serializer::placeOf(Step value) const {
    Place place;
    place.value = value;
    if (!value.isNowhere() && (*at(value) == '{' || *at(value) == '[')) { place.next = firstIn(value); }
    return place;
}

/// Selects a value. Its place is made where it stays: a copy would wait for what has just been stored.
void Serializer::push(Step value) {
    auto& place = stack_.emplace_back();
    place.value = value;
    if (!value.isNowhere() && (*at(value) == '{' || *at(value) == '[')) { place.next = firstIn(value); }
}

/// Takes the selection, which is not absent, off the stack, and goes on behind it.
void Serializer::pop(Step behind) {
    stack_.pop_back();
    if (stack_.empty()) { return; }
    top().next = separated(behind);
    ++top().index;
}

/// The place behind the selection, which is not absent. Of an object or array that has been read to its end it is known.
Serializer::Step Serializer::behindSelection() const {
    auto const& place = stack_.back();
    auto const first = *at(place.value);
    bool const isRead = (first == '{' || first == '[') && (*at(place.next) == '}' || *at(place.next) == ']');
    return isRead ? Step{place.next.at + 1, place.next.extent} : behind(place.value);
}

void Serializer::rewind() {
    stack_.clear();
    push(stepTo(skipBlanks(begin_), 0));
}

void Serializer::drop() {
    if (selected() != nullptr) {
        pop(behindSelection());
    } else if (!stack_.empty()) {
        stack_.pop_back();
    }
}

bool Serializer::skipAbsent() {
    if (selected() != nullptr) { return false; }
    drop();
    return true;
}

// ---- steps through the text

/// The string at a step. A short one is searched for its end; where a longer one ends has been noted.
Serializer::String Serializer::stringAt(Step step) const {
    auto const* const first = at(step) + 1;
    auto const* const limit =
        static_cast<std::size_t>(end_ - first) > limits::longestShort + 1 ? first + limits::longestShort + 1 : end_;
    bool escaped = false;
    auto const* at = scan::findQuoteOrEscape(first, limit);
    while (at < limit && *at == '\\') {
        escaped = true;
        at = at + 2 < limit ? scan::findQuoteOrEscape(at + 2, limit) : limit;
    }
    if (at < limit) { return {between(first, at), escaped, stepTo(at + 1, step.extent)}; }
    auto const& extent = extents_[step.extent];
    return {between(first, begin_ + extent.end), extent.count != 0, {extent.end + 1, extent.next}};
}

/// Steps over the key at `at` where that is short and written like `key`, which has no escapes; null where it is not.
char const* Serializer::skipKey(char const* at, std::string_view key) const {
    auto const length = key.size() + 2; // with its quotes
    bool const same = key.size() <= limits::longestShort && static_cast<std::size_t>(end_ - at) > length &&
                      at[0] == '"' && at[length - 1] == '"' && std::memcmp(at + 1, key.data(), key.size()) == 0;
    return same ? at + length : nullptr;
}

/// Steps from behind a key to its value.
Serializer::Step Serializer::skipColon(Step behindKey) const {
    return stepTo(skipBlanks(skipBlanks(at(behindKey)) + 1), behindKey.extent);
}

/// The first member or element of an object or array, or its closing bracket.
Serializer::Step Serializer::firstIn(Step value) const { return stepTo(skipBlanks(at(value) + 1), value.extent + 1); }

/// The bracket that ends an object or array.
char const* Serializer::endOf(Step value) const { return begin_ + extents_[value.extent].end; }

Serializer::Step Serializer::behind(Step value) const {
    auto const* const first = at(value);
    switch (*first) {
    case '{':
    case '[': return {extents_[value.extent].end + 1, extents_[value.extent].next};
    case '"': return stringAt(value).behind;
    default: return stepTo(skipScalar(first, end_), value.extent);
    }
}

/// From behind a value to the next member or element, or to the bracket that ends them.
Serializer::Step Serializer::separated(Step behind) const {
    auto const* next = skipBlanks(at(behind));
    if (*next == ',') { next = skipBlanks(next + 1); }
    return stepTo(next, behind.extent);
}

/// Makes the element of that number the next one, or the closing bracket where there is none.
void Serializer::stepTo(Place& array, std::size_t index) const {
    if (index < array.index) {
        array.next = firstIn(array.value);
        array.index = 0;
    }
    for (; array.index < index && *at(array.next) != ']'; ++array.index) { array.next = separated(behind(array.next)); }
}

// ---- selecting

/// Whether a string stands for a text.
bool Serializer::isText(String const& string, std::string_view text) {
    if (!string.hasEscape) { return string.text == text; }
    std::string unescaped;
    appendUnescaped(unescaped, string.text);
    return unescaped == text;
}

/// Looks for a member's value, from one member on and up to a place of the text.
Serializer::Step Serializer::findFrom(Step step, char const* last, std::string_view key) const {
    while (at(step) < last) {
        auto const candidate = stringAt(step);
        auto const value = skipColon(candidate.behind);
        if (isText(candidate, key)) { return value; }
        step = separated(behind(value));
    }
    return nowhere;
}

/// Looks for a member's value where the object is read next, then behind that, then before it.
Serializer::Step Serializer::find(Place const& object, std::string_view key) const {
    auto const* const next = at(object.next);
    if (auto const* const behindKey = skipKey(next, key)) { return skipColon(stepTo(behindKey, object.next.extent)); }
    auto const found = findFrom(object.next, endOf(object.value), key);
    return found.isNowhere() ? findFrom(firstIn(object.value), next, key) : found;
}

/// Selects the first entry of an array of bases that has the serial name.
void Serializer::selectBase(Place& array, std::string_view serialName) {
    for (stepTo(array, 0); *at(array.next) != ']'; stepTo(array, array.index + std::size_t{1})) {
        if (*at(array.next) != '{') { continue; }
        auto entry = placeOf(array.next);
        auto const className = find(entry, name);
        if (className.isNowhere() || *at(className) != '"') { continue; }
        auto const found = stringAt(className);
        if (!isText(found, serialName)) { continue; }
        entry.next = separated(found.behind);
        stack_.push_back(entry);
        return;
    }
    stack_.emplace_back();
}

Serializer& Serializer::select(std::string_view key) {
    auto const* const place = selected();
    if (place == nullptr) {
        stack_.emplace_back(); // nothing is found below an absent value
    } else if (is('{')) {
        push(find(*place, key));
        top().isBases = key == bases;
        if (top().isBases && selected() != nullptr && !isArray()) { failExpected("array"); }
    } else if (place->isBases) {
        selectBase(top(), key);
    } else {
        failExpected("object");
    }
    return *this;
}

Serializer& Serializer::operator>>(char const* key) {
    // A key that has to be escaped is not written in the text as it is, and is looked for in the slow way.
    if (std::strpbrk(key, "\"\\") == nullptr || !is('{')) { return select(key); }
    auto const& object = top();
    push(findFrom(firstIn(object.value), endOf(object.value), key));
    return *this;
}

std::size_t Serializer::size() const {
    if (!isArray()) { failExpected("array"); }
    return extents_[selected()->value.extent].count;
}

Serializer& Serializer::element(std::size_t index) {
    auto element = nowhere;
    if (isArray()) {
        auto& array = top();
        if (array.index != index) { stepTo(array, index); }
        if (*at(array.next) != ']') { element = array.next; }
    }
    push(element);
    return *this;
}

bool Serializer::isNull() const noexcept { return is('n'); }

bool Serializer::isArray() const noexcept { return is('['); }

// ---- the next member

namespace {

/// Whether a text begins with a key of at least four characters. A call to compare so few would take as long as the rest
/// of a member's reading: they are compared by words, of which the last one may overlap the one before it.
bool beginsWith(char const* at, std::string_view key) noexcept {
    using Word = std::size_t;
    auto const differ = [&](auto word, std::size_t place) {
        auto expected = word;
        std::memcpy(&word, at + place, sizeof word);
        std::memcpy(&expected, key.data() + place, sizeof expected);
        return word != expected;
    };
    if (key.size() < sizeof(Word)) {
        return !differ(std::uint32_t(), 0) && !differ(std::uint32_t(), key.size() - sizeof(std::uint32_t));
    }
    for (std::size_t place = 0; place + sizeof(Word) < key.size(); place += sizeof(Word)) {
        if (differ(Word(), place)) { return false; }
    }
    return !differ(Word(), key.size() - sizeof(Word));
}

/// A key without its quotes and its colon.
std::string_view bare(std::string_view key) noexcept { return key.substr(1, key.size() - 3); }

bool endsScalar(char c) noexcept { return c == ',' || c == '}' || c == ']'; }

/// Reads up to ten digits, as many as 32 bits have, up to what ends a scalar; null where it is another number.
char const* readDigits(char const* at, std::uint64_t& value) noexcept {
    std::uint64_t read = 0;
    for (auto const* const limit = at + 10; scan::isDigit(*at); ++at) {
        if (at == limit) { return nullptr; }
        read = read * 10 + static_cast<unsigned char>(*at - '0');
    }
    value = read;
    return endsScalar(*at) ? at : nullptr;
}

} // namespace

/// Where the text goes on behind the key of the next member and its colon, if the key is that one and there are no blanks
/// before the colon; else null. Blanks may follow.
///
/// Only in an object is a string followed by a colon, so that nothing else can be taken for it.
char const* Serializer::valueOfNext(std::string_view key) const noexcept {
    if (stack_.empty()) { return nullptr; }
    auto const* const next = at(stack_.back().next);
    bool const has = static_cast<std::size_t>(end_ - next) > key.size() && beginsWith(next, key);
    return has ? next + key.size() : nullptr;
}

/// Goes on behind a scalar member or element of the selection.
void Serializer::goOn(char const* behind) {
    auto& place = top();
    if (*behind == ',' && !scan::isBlank(behind[1])) {
        place.next.at = static_cast<std::uint32_t>(behind + 1 - begin_);
    } else {
        place.next = separated(stepTo(behind, place.next.extent));
    }
    ++place.index;
}

template <class Integer> Serializer& Serializer::readMember(std::string_view key, Integer& value) {
    std::uint64_t number = 0;
    if (auto const* const at = valueOfNext(key)) {
        auto const* const behind = readDigits(at, number);
        if (behind != nullptr && behind != at && number <= std::uint64_t{std::numeric_limits<Integer>::max()}) {
            value = static_cast<Integer>(number);
            goOn(behind);
            return *this;
        }
    }
    return select(bare(key)) >> value;
}

Serializer& Serializer::read(std::string_view key, int& value) { return readMember(key, value); }
Serializer& Serializer::read(std::string_view key, unsigned int& value) { return readMember(key, value); }
Serializer& Serializer::read(std::string_view key, unsigned char& value) { return readMember(key, value); }
Serializer& Serializer::read(std::string_view key, unsigned short& value) { return readMember(key, value); }

Serializer& Serializer::read(std::string_view key, bool& value) {
    auto const* const at = valueOfNext(key);
    if (at == nullptr || (*at != 't' && *at != 'f')) { return select(bare(key)) >> value; }
    value = *at == 't';
    goOn(at + (value ? 4 : 5));
    return *this;
}

Serializer& Serializer::read(std::string_view key, std::string& value) {
    auto const text = nextText(key);
    if (text.data() == nullptr) { return select(bare(key)) >> value; }
    value = text;
    passText(text);
    return *this;
}

std::string_view Serializer::nextText(std::string_view key) const {
    auto const* const first = key.empty() ? at(stack_.back().next) : valueOfNext(key);
    if (first == nullptr || *first != '"') { return {}; }
    auto const size = std::min(static_cast<std::size_t>(end_ - first) - 1, limits::longestShort + 1);
    auto const* const limit = first + 1 + size;
    auto const* const last = scan::findQuoteOrEscape(first + 1, limit);
    return last != limit && *last == '"' ? between(first + 1, last) : std::string_view();
}

void Serializer::passText(std::string_view text) { goOn(text.data() + text.size() + 1); }

Serializer& Serializer::enter(std::string_view key) {
    auto const* const at = valueOfNext(key);
    if (at == nullptr) { return select(bare(key)); }
    push(stepTo(skipBlanks(at), top().next.extent));
    return *this;
}

Serializer& Serializer::enterBase(std::string_view serialName) {
    static constexpr std::string_view bracket = R"("__bases__":)";
    static constexpr std::string_view opening = R"("__bases__":[{"__name__":")";
    auto const* const begin = valueOfNext(opening);
    auto const size = serialName.size();
    bool const has = begin != nullptr && size <= limits::longestShort &&
                     static_cast<std::size_t>(end_ - begin) > size &&
                     std::memcmp(begin, serialName.data(), size) == 0 && begin[size] == '"';
    if (!has) { return select(bases).select(serialName); }
    auto const extent = top().next.extent; // of the array; the entry's is the next one
    push(stepTo(begin - opening.size() + bracket.size(), extent));
    top().isBases = true;
    push(top().next);
    top().next = separated(stepTo(begin + size + 1, extent + 2));
    return *this;
}

// ---- values

Serializer& Serializer::operator>>(bool& value) {
    if (skipAbsent()) { return *this; }
    if (!is('t') && !is('f')) { failExpected("boolean"); }
    value = is('t');
    drop();
    return *this;
}

template <class Integer> Serializer& Serializer::readInteger(Integer& value, char const* expected) {
    if (skipAbsent()) { return *this; }
    auto const step = top().value;
    Integer read = 0;
    auto const parsed = std::from_chars(at(step), end_, read);
    bool const isWhole = *parsed.ptr != '.' && *parsed.ptr != 'e' && *parsed.ptr != 'E';
    if (parsed.ec != std::errc() || !isWhole) { requireZero(at(step), expected); }
    value = read;
    pop(stepTo(skipScalar(parsed.ptr, end_), step.extent));
    return *this;
}

/// Refuses what is no integer of the kind that is read; but an unsigned zero may have a sign.
void Serializer::requireZero(char const* at, char const* expected) const {
    auto const type = typeAt(at);
    if (type != Json::intValue && type != Json::uintValue) { failExpected(expected); }
    std::string const number(at, skipScalar(at, end_));
    if (number != "-0") { fail(std::string("expected ") + expected + ", got " + number); }
}

Serializer& Serializer::operator>>(int& value) { return readInteger(value, "int"); }
Serializer& Serializer::operator>>(unsigned int& value) { return readInteger(value, "unsigned int"); }
Serializer& Serializer::operator>>(unsigned char& value) { return readInteger(value, "unsigned byte"); }
Serializer& Serializer::operator>>(unsigned short& value) { return readInteger(value, "unsigned short"); }

Serializer& Serializer::operator>>(double& value) {
    if (skipAbsent()) { return *this; }
    auto const step = top().value;
    auto const* const first = at(step);
    if (*first != '-' && !scan::isDigit(*first)) { failExpected("number"); }
    auto const* const behind = skipScalar(first, end_);
    value = toDouble(between(first, behind));
    pop(stepTo(behind, step.extent));
    return *this;
}

Serializer& Serializer::operator>>(std::string& value) {
    if (skipAbsent()) { return *this; }
    value = text();
    drop();
    return *this;
}

std::string_view Serializer::text() {
    if (!is('"')) { failExpected("string"); }
    auto const string = stringAt(top().value);
    if (!string.hasEscape) { return string.text; }
    unescaped_.clear();
    appendUnescaped(unescaped_, string.text);
    return unescaped_;
}

Serializable* Serializer::deserialize() {
    if (!is('{')) { failExpected("object"); }
    auto const depth = stack_.size();
    auto const object = top().value;
    auto className = nextText(R"("__name__":)");
    if (className.data() != nullptr) {
        passText(className);
    } else {
        select(name);
        if (skipAbsent()) { fail("object without a \"" + name + '"'); }
        className = text();
        drop();
    }
    if (className.empty()) { fail("object without a \"" + name + '"'); }
    auto const factory = SerialRegistry::find(className);
    if (!factory) { fail("unknown class \"" + std::string(className) + '"'); }
    std::unique_ptr<Serializable> made(factory(*this, nullptr));
    // Not every class ends its reading with `finished`; the value is consumed all the same.
    if (stack_.size() >= depth) {
        stack_.resize(depth);
        pop(behind(object));
    }
    return made.release();
}

Json::Value const& Serializer::topNode() {
    if (skipAbsent()) { return Json::Value::nullSingleton(); }
    node_ = std::make_unique<Json::Value>(toJsonValue(at(top().value), end_));
    drop();
    return *node_;
}

// ---- error texts

char const* Serializer::typeName() const {
    auto const* const place = selected();
    return nameOfType(place != nullptr ? typeAt(at(place->value)) : Json::nullValue);
}

char const* Serializer::nameOfType(int type) {
    switch (type) {
    case Json::nullValue: return "null";
    case Json::intValue: return "int";
    case Json::uintValue: return "uint";
    case Json::realValue: return "real";
    case Json::stringValue: return "string";
    case Json::booleanValue: return "boolean";
    case Json::arrayValue: return "array";
    case Json::objectValue: return "object";
    default: return "unknown";
    }
}

/// The key of a member whose value begins there.
std::string Serializer::keyOf(Step member, Step object) const {
    for (auto step = firstIn(object); at(step) < at(member);) {
        auto const found = stringAt(step);
        auto const value = skipColon(found.behind);
        if (value.at == member.at) {
            std::string key;
            appendUnescaped(key, found.text);
            return key;
        }
        step = separated(behind(value));
    }
    return {};
}

std::string Serializer::path() const {
    std::string path;
    for (std::size_t i = 1; i < stack_.size() && !stack_[i].value.isNowhere(); ++i) {
        auto const& parent = stack_[i - 1];
        if (parent.isBases) { continue; }
        if (*at(parent.value) == '[') {
            path += '[' + std::to_string(parent.index) + ']';
        } else if (!stack_[i].isBases || i + 1 == stack_.size()) {
            path += (path.empty() ? "" : ".") + keyOf(stack_[i].value, parent.value);
        }
    }
    return path;
}

void Serializer::fail(std::string const& complaint) const {
    auto const where = path();
    throw SerializerError(where.empty() ? complaint : where + ": " + complaint);
}

void Serializer::fail(InvalidEnumError const& error) const { throw InvalidEnumError(path(), error); }

void Serializer::failExpected(char const* expected) const {
    fail(std::string("expected ") + expected + ", got " + typeName());
}

Serializer& basector(Serializer& s) { return s; }

Serializer& finished(Serializer& s) {
    s.drop();
    return s;
}

} // namespace zorv
