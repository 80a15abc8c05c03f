#pragma once

#include "platform/Export.h"

#include <json/value.h>

#include <deque>
#include <string>

namespace zorv {

class Serializable;

/// Writes messages as JSON text, and reads them back.
///
/// As a writer it appends to one text, without white space; `str()` gives what has been written. As a reader it keeps a
/// stack of selected values: a key or an element is selected, and reading a value, or `finished`, takes the selection
/// off again. A selection that finds nothing is absent: reading it changes nothing, and all that is selected below it is
/// absent too. Every failure is a SerializerError.
class ZORV_EXPORT Serializer {
public:
    using Manipulator = Serializer& (*)(Serializer&);

    /// Deepest nesting of objects and arrays that a text may have.
    static constexpr int maxDepth = 128;

    /// Most commas that a text may have outside of strings, and with them values. In memory a value takes thirty times the
    /// room that it takes in the text, and a controller has little.
    static constexpr int maxCommas = 1 << 20;

    static std::string const name;  ///< key of an object's serial name
    static std::string const bases; ///< key of the array that holds the frames of an object's base classes

    /// An empty writer.
    Serializer();

    /// A reader of one JSON value, with the root selected; malformed text is an error that names line and column.
    explicit Serializer(std::string const& text);

    Serializer(Serializer const&) = delete;
    Serializer& operator=(Serializer const&) = delete;
    ~Serializer() = default;

    /// What has been written so far.
    std::string const& str() const noexcept { return text_; }

    Serializer& operator<<(bool value);
    Serializer& operator<<(int value);
    Serializer& operator<<(unsigned int value);
    Serializer& operator<<(unsigned char value);
    Serializer& operator<<(unsigned short value);
    /// Shortest decimal form that reads back to the same value; NaN and the infinities are refused.
    Serializer& operator<<(double value);
    /// A JSON string; a text that is not UTF-8 is refused.
    Serializer& operator<<(std::string const& value);
    Serializer& operator<<(char const* value);
    Serializer& operator<<(Manipulator manipulator) { return manipulator(*this); }

    /// Selects a member of the selected object, or, in an array of bases, the entry with that serial name.
    Serializer& operator>>(char const* key);
    Serializer& operator>>(std::string const& key) { return *this >> key.c_str(); }

    Serializer& operator>>(bool& value);
    Serializer& operator>>(int& value);
    Serializer& operator>>(unsigned int& value);
    Serializer& operator>>(unsigned char& value);
    Serializer& operator>>(unsigned short& value);
    Serializer& operator>>(double& value);
    Serializer& operator>>(std::string& value);
    Serializer& operator>>(Manipulator manipulator) { return manipulator(*this); }

    /// Builds a new object of the class that the selected object names; the caller owns it.
    ///
    /// Errors: not an object, no serial name, a name that is not registered; and all that the class's reader throws.
    Serializable* deserialize();

    /// The selected value, which is taken off the stack; JSON null where it is absent.
    Json::Value const& topNode();

    /// Whether the selection found nothing; an absent selection is taken off the stack.
    bool skipAbsent();

    /// The selected string, which stays selected; an error where it is not a string.
    std::string text() const;

    /// Throws a SerializerError about the selected value: its path, then `complaint`.
    [[noreturn]] void fail(std::string const& complaint) const;

    bool isNull() const noexcept;
    bool isArray() const noexcept;

    /// Number of elements of the selected array, which stays selected; an error where it is not an array.
    std::size_t size() const;

    /// Selects an element of the selected array; elements are stepped through in order.
    Serializer& element(std::size_t index);

    /// The JSON type as error texts name it: "null", "int", "uint", "real", "string", "boolean", "array", "object".
    static std::string toString(Json::ValueType type);

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

    Serializer& append(char c);
    void writeQuoted(char const* data, std::size_t size);
    template <class Integer> Serializer& readInteger(Integer& value, char const* expected);

    Json::Value* selected() const noexcept { return stack_.empty() ? nullptr : stack_.back(); }
    Json::Value* pop() noexcept;
    bool isBases(std::size_t place) const;
    std::string path() const;
    [[noreturn]] void failExpected(char const* expected) const;

    bool reading_ = false;
    bool escape_ = true;
    std::string text_;
    Json::Value root_;
    std::deque<Json::Value*> stack_; // from the root to the selection; a null pointer is an absent value
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

ZORV_EXPORT Serializer& basector(Serializer& s); ///< the base class reads the selected entry of the bases array next
ZORV_EXPORT Serializer& finished(Serializer& s); ///< takes the selected value off the reader's stack

} // namespace zorv
