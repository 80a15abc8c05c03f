// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/json/checkText.h"

#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/json/numbers.h"
#include "platform/libtransport/json/scan.h"
#include "platform/libtransport/json/strings.h"
#include "platform/libtransport/limits.h"

#include <boost/container/small_vector.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <forward_list>
#include <string>
#include <string_view>
#include <utility>

namespace zorv {

namespace {

using scan::skipBlanks;

[[noreturn]] void malformed(std::string const& text, char const* at, std::string const& complaint) {
    auto const line = 1 + std::count(text.data(), at, '\n');
    auto const* lineStart = at;
    while (lineStart != text.data() && lineStart[-1] != '\n') { --lineStart; }
    throw SerializerError("malformed text: line " + std::to_string(line) + ", column " +
                          std::to_string(at - lineStart + 1) + ": " + complaint);
}

/// A key of an object, without its escapes.
struct Key {
    Key(char const* theAt, std::string_view theText) : at(theAt), text(theText), mark(markOf(theText)) {}

    static std::uint32_t markOf(std::string_view text) noexcept {
        auto const size = static_cast<std::uint32_t>(text.size());
        if (text.empty()) { return size; }
        auto const bits = [](char c) { return static_cast<std::uint32_t>(static_cast<unsigned char>(c)); };
        return size ^ bits(text.front()) << 24U ^ bits(text.back()) << 16U;
    }

    bool operator==(Key const& other) const { return mark == other.mark && text == other.text; }

    char const* at; // its first quote
    std::string_view text;
    std::uint32_t mark; // equal where the keys are equal, and seldom where they are not
};

/// Up to so many keys of an object are compared each with each, which is faster than anything else for a few.
constexpr std::size_t fewKeys = 16;

// Recursive descent. The depth is bounded, and each text that passes ends with NUL, so that no step has to ask whether
// there is a next character.
class TextCheck {
public:
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): firstKeys_ is written at each depth before it is read there
    explicit TextCheck(std::string const& text) : text_(text), end_(text.data() + text.size()) {
        // A usual text has an object or an array every forty bytes; one reservation is enough for it.
        shape_.extents.reserve(text.size() / 32 + 16);
    }

    TextShape take() {
        if (text_.size() > limits::maxBytes) { fail(text_.data(), "longer than 4 GiB"); }
        auto const* const behind = skipBlanks(value(skipBlanks(text_.data())));
        if (behind != end_) { unexpected(behind, "more text after the value"); }
        return std::move(shape_);
    }

private:
    /// Steps over the value at `at`. Most are strings and numbers, for which nothing is called.
    char const* value(char const* at) {
        if (++values_ > limits::maxValues) { fail(at, "more than " + std::to_string(limits::maxValues) + " values"); }
        if (*at == '"') { return string(at); }
        return scan::isDigit(*at) ? number(at) : otherValue(at);
    }

    [[gnu::noinline]] char const* otherValue(char const* at) {
        switch (*at) {
        case '{': return object(at);
        case '[': return array(at);
        case 't': return literal(at, "true");
        case 'f': return literal(at, "false");
        case 'n': return literal(at, "null");
        case '-': return number(at);
        case '+': fail(at, "not a number");
        default: unexpected(at, "expected a value");
        }
    }

    char const* object(char const* at) {
        auto const extent = open(at);
        auto const firstKey = keys_.size();
        at = skipBlanks(at + 1);
        if (*at != '}') {
            at = members(at, firstKey);
            if (*at != '}') { unexpected(at, "expected ',' or '}'"); }
        }
        auto const count = keys_.size() - firstKey;
        if (count > fewKeys) { refuseDoubled(firstKey, keys_.size()); }
        keys_.erase(keys_.begin() + static_cast<std::ptrdiff_t>(firstKey), keys_.end());
        close(extent, at, count);
        return at + 1;
    }

    char const* members(char const* at, std::size_t firstKey) {
        for (;;) {
            at = skipBlanks(key(at, firstKey));
            if (*at != ':') { unexpected(at, "expected ':'"); }
            at = skipBlanks(value(skipBlanks(at + 1)));
            if (*at != ',') { return at; }
            at = skipBlanks(at + 1);
            if (*at == '}') { fail(at, "nothing after a comma"); }
        }
    }

    char const* array(char const* at) {
        auto const extent = open(at);
        std::size_t count = 0;
        at = skipBlanks(at + 1);
        if (*at != ']') {
            at = elements(at, count);
            if (*at != ']') { unexpected(at, "expected ',' or ']'"); }
        }
        close(extent, at, count);
        return at + 1;
    }

    char const* elements(char const* at, std::size_t& count) {
        for (;;) {
            at = skipBlanks(value(at));
            ++count;
            if (*at != ',') { return at; }
            at = skipBlanks(at + 1);
            if (*at == ']') { fail(at, "nothing after a comma"); }
        }
    }

    std::size_t open(char const* at) {
        if (depth_ == limits::maxDepth) {
            fail(at, "nested deeper than " + std::to_string(limits::maxDepth) + " levels");
        }
        firstKeys_[depth_] = keys_.size(); // an array has no keys
        shape_.depth = std::max(shape_.depth, ++depth_);
        shape_.extents.emplace_back();
        return shape_.extents.size() - 1;
    }

    void close(std::size_t extent, char const* at, std::size_t count) {
        --depth_;
        shape_.extents[extent] = {static_cast<std::uint32_t>(at - text_.data()),
                                  static_cast<std::uint32_t>(shape_.extents.size()), static_cast<std::uint32_t>(count)};
    }

    /// Steps over the string at `at`.
    char const* string(char const* at) {
        auto const* const start = at;
        at = scan::skipPlain(at + 1, end_);
        hasEscape_ = false;
        while (*at != '"') { at = scan::skipPlain(notPlain(start, at), end_); }
        if (static_cast<std::size_t>(at - start) > limits::longestShort + 1) { noteLongString(at); }
        return at + 1;
    }

    void noteLongString(char const* end) {
        auto const number = static_cast<std::uint32_t>(shape_.extents.size());
        shape_.extents.push_back(
            {static_cast<std::uint32_t>(end - text_.data()), number + 1, static_cast<std::uint32_t>(hasEscape_)});
    }

    /// Steps over one character of a string that is not plain.
    char const* notPlain(char const* start, char const* at) {
        if (at == end_) { fail(start, "a string without an end"); }
        auto const* const first = at;
        if (*at == '\\') {
            hasEscape_ = true;
            if (auto const* const complaint = skipEscape(at, end_)) { fail(first, complaint); }
        } else if (scan::isControl(*at)) {
            fail(first, "control character in a string");
        } else if (!skipSequence(at, end_)) {
            fail(first, "not UTF-8");
        }
        return at;
    }

    /// Steps over the key at `at`, the next one of the object whose first one has that number.
    char const* key(char const* at, std::size_t firstKey) {
        if (*at != '"') { unexpected(at, "expected a key"); }
        auto const* const behind = string(at);
        std::string_view text(at + 1, static_cast<std::size_t>(behind - at) - 2);
        if (hasEscape_) {
            appendUnescaped(unescapedKeys_.emplace_front(), text);
            text = unescapedKeys_.front();
        }
        auto const& key = keys_.emplace_back(at, text);
        // A large object's keys are compared when all are known.
        if (keys_.size() - firstKey <= fewKeys) {
            for (auto const* other = &keys_[firstKey]; other != &key; ++other) {
                if (*other == key) { doubled(key); }
            }
        }
        return behind;
    }

    char const* literal(char const* at, std::string_view word) {
        if (std::strncmp(at, word.data(), word.size()) != 0) { unexpected(at, "expected a value"); }
        return at + word.size();
    }

    char const* number(char const* at) {
        // Most numbers are a few digits, of which nothing else has to be asked.
        auto const* behindDigits = at;
        while (scan::isDigit(*behindDigits)) { ++behindDigits; }
        bool const isShort = behindDigits != at && (*at != '0' || behindDigits == at + 1) && behindDigits - at < 20;
        if (isShort && (*behindDigits == ',' || *behindDigits == '}' || *behindDigits == ']')) { return behindDigits; }
        auto const* const behind = skipNumber(at);
        if (behind == nullptr) { fail(at, "not a number"); }
        if (!fitsDouble({at, static_cast<std::size_t>(behind - at)})) { fail(at, "a number too large for a double"); }
        return behind;
    }

    /// The second one of two equal keys among those from `first` to `last`, the one that comes first in the text.
    Key const* findDoubled(std::size_t first, std::size_t last) const {
        std::vector<Key const*> sorted;
        sorted.reserve(last - first);
        for (auto i = first; i < last; ++i) { sorted.push_back(&keys_[i]); }
        // Not a hash table: a peer could choose keys that all collide.
        std::sort(sorted.begin(), sorted.end(), [](Key const* a, Key const* b) {
            auto const order = a->text.compare(b->text);
            return order != 0 ? order < 0 : a->at < b->at;
        });
        Key const* found = nullptr;
        for (std::size_t i = 1; i < sorted.size(); ++i) {
            bool const equal = sorted[i]->text == sorted[i - 1]->text;
            if (equal && (found == nullptr || sorted[i]->at < found->at)) { found = sorted[i]; }
        }
        return found;
    }

    void refuseDoubled(std::size_t first, std::size_t last) {
        if (auto const* const key = findDoubled(first, last)) { doubled(*key); }
    }

    [[noreturn]] void doubled(Key const& key) { fail(key.at, "duplicate key \"" + std::string(key.text) + '"'); }

    /// Complains of the first thing that is wrong: a key that comes twice in a large object may stand before `at`.
    [[noreturn]] void fail(char const* at, std::string complaint) {
        for (auto depth = depth_; depth-- > 0;) {
            auto const last = depth + 1 < depth_ ? firstKeys_[depth + 1] : keys_.size();
            if (last - firstKeys_[depth] <= fewKeys) { continue; }
            auto const* const key = findDoubled(firstKeys_[depth], last);
            if (key != nullptr && key->at < at) {
                at = key->at;
                complaint = "duplicate key \"" + std::string(key->text) + '"';
            }
        }
        malformed(text_, at, complaint);
    }

    /// Complains of a character that cannot stand where it stands, with what was expected where it is nothing special.
    [[noreturn]] void unexpected(char const* at, char const* expected) {
        auto const* behind = at;
        if (at == end_) { fail(at, std::string(expected) + ", and the text ends"); }
        if (*at == '\0') { fail(at, "NUL character"); }
        if (*at == '/') { fail(at, "comment"); }
        if (!scan::isAscii(*at) && !skipSequence(behind, end_)) { fail(at, "not UTF-8"); }
        fail(at, expected);
    }

    std::string const& text_;
    char const* const end_;
    TextShape shape_;
    std::size_t values_ = 0;
    std::size_t depth_ = 0;
    bool hasEscape_ = false;                              // the last string
    boost::container::small_vector<Key, 64> keys_;        // of the open objects, the innermost last
    std::array<std::size_t, limits::maxDepth> firstKeys_; // where those of each depth begin
    std::forward_list<std::string> unescapedKeys_;        // does not move what it holds
};

} // namespace

TextShape checkText(std::string const& text) { return TextCheck(text).take(); }

} // namespace zorv
