// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/TextBuffer.h"
#include "platform/libtransport/limits.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace Json {
class Value;
} // namespace Json

namespace zorv {

class InvalidEnumError;
class Serializable;
struct Extent;

/// One of the two keys of a frame. It is a string that selects a member, which other strings do not.
class FrameKey : public std::string {
public:
    using std::string::string;
};

/// Writes messages as JSON text, and reads them back.
///
/// As a writer it appends to one text, without white space; `str()` gives what has been written. As a reader it checks
/// its text once and then steps through it, with a stack of selected values: a key or an element is selected, and
/// reading a value, or `finished`, takes the selection off again. Members are found in any order, and without a search
/// where they are read in the order of the text. A selection that finds nothing is absent: reading it changes nothing,
/// and all that is selected below it is absent too. Every failure is a SerializerError.
class ZORV_EXPORT Serializer {
public:
    using Manipulator = Serializer& (*)(Serializer&);

    static FrameKey const name;  ///< key of an object's serial name
    static FrameKey const bases; ///< key of the array that holds the frames of an object's base classes

    /// An empty writer.
    Serializer();

    /// A reader of one JSON value, with the root selected; malformed text is an error that names line and column.
    explicit Serializer(std::string text);

    /// A reader of a text that lives longer than the reader.
    static Serializer over(std::string const& text) { return {InPlace(), text}; }

    Serializer(Serializer const&) = delete;
    Serializer& operator=(Serializer const&) = delete;
    ~Serializer();

    /// What has been written so far.
    std::string const& str() const& { return written_.all(); }
    std::string str() && { return written_.take(); }

    Serializer& operator<<(bool value);
    Serializer& operator<<(int value);
    Serializer& operator<<(unsigned int value);
    Serializer& operator<<(unsigned char value);
    Serializer& operator<<(unsigned short value);
    /// Shortest decimal form that reads back to the same value; NaN and the infinities are refused.
    Serializer& operator<<(double value);
    /// A JSON string; a text that is not UTF-8 is refused.
    Serializer& operator<<(std::string const& value) { return write(value); }
    Serializer& operator<<(char const* value) { return write(value); }
    Serializer& operator<<(Manipulator manipulator) { return manipulator(*this); }

    // A pointer would be written as true, a character as a number.
    template <class T, std::enable_if_t<!std::is_function_v<T> && !std::is_same_v<std::remove_cv_t<T>, char>, int> = 0>
    Serializer& operator<<(T* pointer) = delete;
    Serializer& operator<<(char) = delete;

    /// Writes a JSON string.
    Serializer& write(std::string_view value);

    // What the member tables are written with: texts that are JSON as they stand, put down without a look into them.

    /// Writes punctuation, and parts of a string that has nothing to escape.
    Serializer& writeRaw(std::string_view json) {
        written_.append(json);
        return *this;
    }

    /// Writes a key with all that stands between the value before it and its own.
    Serializer& writeKey(std::string_view key) {
        escape_ = true;
        return writeRaw(key);
    }

    /// Writes the quote before a string that has nothing to escape.
    Serializer& openPlain() {
        count();
        escape_ = true;
        return writeRaw("\"");
    }

    /// Writes a string that has nothing to escape.
    Serializer& writePlain(std::string_view value) {
        if (value.size() > longestPlain) { return openPlain().writeRaw(value).writeRaw("\""); }
        return writePlain(value.size(), [value](char* at) {
            std::memcpy(at, value.data(), value.size());
            return at + value.size();
        });
    }

    // The braces and brackets of what is written by tables; as the manipulators, without a call.
    Serializer& openValue(char bracket) {
        count();
        deepen();
        written_.append(bracket);
        return *this;
    }
    Serializer& closeValue(char bracket) {
        --depth_;
        written_.append(bracket);
        return *this;
    }

    /// Writes a string of at most `most` characters, which have nothing to escape; `put` puts them where it is told, and
    /// says where they end. Where it throws, nothing is written.
    template <class Put> Serializer& writePlain(std::size_t most, Put put) {
        auto* const begin = written_.room(most + 2);
        char* const end = put(begin + 1);
        count();
        *begin = '"';
        *end = '"';
        written_.took(end + 1);
        escape_ = true;
        return *this;
    }

    /// Opens an object and the array of its bases.
    Serializer& openFrame(std::string_view serialName);

    /// Writes an object that is read back by its serial name, which has to be registered.
    Serializer& writeReference(Serializable const& object);

    /// Selects a member of the selected object, or, in an array of bases, the entry with that serial name.
    Serializer& operator>>(char const* key);
    Serializer& operator>>(FrameKey const& key) { return select(key); }
    /// The same for a key that has neither quotes nor backslashes.
    Serializer& select(std::string_view key);
    // A string that is not constant is read; one that is would look the same and select.
    Serializer& operator>>(std::string const& key) = delete;

    Serializer& operator>>(bool& value);
    Serializer& operator>>(int& value);
    Serializer& operator>>(unsigned int& value);
    Serializer& operator>>(unsigned char& value);
    Serializer& operator>>(unsigned short& value);
    Serializer& operator>>(double& value);
    Serializer& operator>>(std::string& value);
    Serializer& operator>>(Manipulator manipulator) { return manipulator(*this); }

    // What the member tables are read with: select() and the reading of a value in one step, which is short where the
    // member is the next one of the selected object and is written as the writer writes it. A key is given as it is
    // written before a value, with the quotes and the colon: "latencyMs_":

    Serializer& read(std::string_view key, bool& value);
    Serializer& read(std::string_view key, int& value);
    Serializer& read(std::string_view key, unsigned int& value);
    Serializer& read(std::string_view key, unsigned char& value);
    Serializer& read(std::string_view key, unsigned short& value);
    Serializer& read(std::string_view key, std::string& value);

    /// Selects the member.
    Serializer& enter(std::string_view key);

    /// The member's text, where it is the next one and a string without escapes: passText() takes it. Of an array, with
    /// an empty key, the next element. A null pointer where it is anything else, which the long way finds.
    std::string_view nextText(std::string_view key) const;
    void passText(std::string_view text);

    /// Selects the array of bases, and the entry with that serial name in it.
    Serializer& enterBase(std::string_view serialName);

    /// Builds a new object of the class that the selected object names; the caller owns it.
    ///
    /// Errors: not an object, no serial name, a name that is not registered; and all that the class's reader throws.
    Serializable* deserialize();

    /// The selected value, which is taken off the stack; JSON null where it is absent. It stays until the next call.
    Json::Value const& topNode();

    /// Takes the selected value off the stack.
    void drop();

    /// Selects the root, and nothing else, again.
    void rewind();

    /// Whether the selection found nothing; an absent selection is taken off the stack.
    bool skipAbsent();

    /// The selected string, which stays selected; an error where it is not a string. It stays until the next call.
    std::string_view text();

    /// Throws a SerializerError about the selected value: its path, then `complaint`.
    [[noreturn]] void fail(std::string const& complaint) const;

    /// Throws an enumeration's error about the selected text once more, with the path before it.
    [[noreturn]] void fail(InvalidEnumError const& error) const;

    /// The way from the root to the selection, such as "destinations_[2].nodeId_"; the frames of base classes are left
    /// out, since a member's key says enough.
    std::string path() const;

    bool isNull() const noexcept;
    bool isArray() const noexcept;

    /// The selected value's JSON type, as toString names it.
    char const* typeName() const;

    /// Number of elements of the selected array, which stays selected; an error where it is not an array.
    std::size_t size() const;

    /// Selects an element of the selected array; elements are stepped through in order.
    Serializer& element(std::size_t index);

    /// The JSON type as error texts name it: "null", "int", "uint", "real", "string", "boolean", "array", "object".
    template <class ValueType> static std::string toString(ValueType type) {
        static_assert(std::is_enum_v<ValueType>, "a Json::ValueType, which cannot be declared without its header");
        return nameOfType(static_cast<int>(type));
    }

private:
    friend ZORV_EXPORT Serializer& opencurly(Serializer& s);
    friend ZORV_EXPORT Serializer& closecurly(Serializer& s);
    friend ZORV_EXPORT Serializer& openbracket(Serializer& s);
    friend ZORV_EXPORT Serializer& closebracket(Serializer& s);
    friend ZORV_EXPORT Serializer& colon(Serializer& s);
    friend ZORV_EXPORT Serializer& comma(Serializer& s);
    friend ZORV_EXPORT Serializer& null(Serializer& s);
    friend ZORV_EXPORT Serializer& noescape(Serializer& s);
    friend ZORV_EXPORT Serializer& basector(Serializer& s);
    friend ZORV_EXPORT Serializer& finished(Serializer& s);

    static constexpr std::size_t longestPlain = 128;

    struct InPlace {};
    Serializer(InPlace, std::string const& text);

    /// A step's position in the text.
    struct Step {
        std::uint32_t at = 0;     ///< place of a value, or of a key
        std::uint32_t extent = 0; ///< number of the first object, array or long string that begins there or later

        bool isNowhere() const noexcept { return at == nowhere.at; }
    };
    static constexpr Step nowhere{0xFFFFFFFF, 0}; ///< where absent values are

    /// A selected value.
    struct Place {
        Step value = nowhere;    ///< where it begins
        Step next;               ///< of an object or array: the member or element that is looked at first
        std::uint32_t index = 0; ///< of an array: the number of the element at `next`
        bool isBases = false;    ///< the array of an object's bases
    };

    /// A string of the text.
    struct String {
        std::string_view text; ///< between the quotes, as it is written
        bool hasEscape = false;
        Step behind;
    };

    Serializer& append(char c);
    Serializer& open(char bracket);
    Serializer& close(char bracket);
    template <class Number> Serializer& writeNumber(Number value);

    /// Counts a value: a reader would refuse more.
    void count() {
        if (++values_ > limits::maxValues) { refuseMoreValues(); }
    }
    void deepen() {
        if (++depth_ > limits::maxDepth) { refuseDeeper(); }
    }
    [[noreturn]] static void refuseMoreValues();
    [[noreturn]] static void refuseDeeper();

    void check(std::string const& text);

    char const* at(Step step) const noexcept { return begin_ + step.at; }
    Step stepTo(char const* at, std::uint32_t extent) const noexcept {
        return {static_cast<std::uint32_t>(at - begin_), extent};
    }
    bool is(char bracket) const noexcept;
    Place const* selected() const noexcept;
    Place& top() noexcept { return stack_.back(); }
    Place placeOf(Step value) const;
    void push(Step value);
    void pop(Step behind);
    Step behindSelection() const;

    char const* valueOfNext(std::string_view key) const noexcept;
    void goOn(char const* behind);
    template <class Integer> Serializer& readMember(std::string_view key, Integer& value);

    String stringAt(Step step) const;
    static bool isText(String const& string, std::string_view text);
    char const* skipKey(char const* at, std::string_view key) const;
    Step skipColon(Step behindKey) const;
    Step firstIn(Step value) const;
    char const* endOf(Step value) const;
    Step behind(Step value) const;
    Step separated(Step behind) const;
    void stepTo(Place& array, std::size_t index) const;

    Step findFrom(Step step, char const* last, std::string_view key) const;
    Step find(Place const& object, std::string_view key) const;
    void selectBase(Place& array, std::string_view serialName);
    std::string keyOf(Step member, Step object) const;

    template <class Integer> Serializer& readInteger(Integer& value, char const* expected);
    void requireZero(char const* at, char const* expected) const;
    [[noreturn]] void failExpected(char const* expected) const;
    static char const* nameOfType(int type);

    bool reading_ = false;
    bool escape_ = true;
    std::size_t depth_ = 0;       // of the open objects and arrays that are written
    std::size_t values_ = 0;      // that have been written
    std::string knownClass_;      // a serial name that was found in the registry
    mutable TextBuffer written_;  // changes, but not its text, where that is asked for
    std::string text_;            // that the reader owns
    std::string unescaped_;       // the string that was asked for last, where it has escapes
    char const* begin_ = nullptr; // of the text that is read
    char const* end_ = nullptr;
    std::vector<Extent> extents_; // of all objects, arrays and long strings of the text
    std::vector<Place> stack_;    // from the root to the selection
    std::unique_ptr<Json::Value> node_;
};

// Punctuation of the writer. A reader passes over it, so that one sequence can describe both directions.
ZORV_EXPORT Serializer& opencurly(Serializer& s);
ZORV_EXPORT Serializer& closecurly(Serializer& s);
ZORV_EXPORT Serializer& openbracket(Serializer& s);
ZORV_EXPORT Serializer& closebracket(Serializer& s);
ZORV_EXPORT Serializer& colon(Serializer& s);
ZORV_EXPORT Serializer& comma(Serializer& s);
ZORV_EXPORT Serializer& null(Serializer& s);
ZORV_EXPORT Serializer& noescape(Serializer& s); ///< the next string is a key that needs no escaping

/// The base class reads the selected entry of the bases array next. The entry is selected already: this does nothing,
/// and only says so where a frame is read.
ZORV_EXPORT Serializer& basector(Serializer& s);
ZORV_EXPORT Serializer& finished(Serializer& s); ///< takes the selected value off the reader's stack

} // namespace zorv
