// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/Serializer.h"

#include "platform/libtransport/SerialRegistrar.h"
#include "platform/libtransport/Serializable.h"
#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/json/checkText.h"
#include "platform/libtransport/json/strings.h"
#include "platform/libtransport/limits.h"

#include <json/value.h>

#include <charconv>
#include <cmath>
#include <limits>

// The writer; SerializerReader.cpp has the reader.

namespace zorv {

FrameKey const Serializer::name("__name__");
FrameKey const Serializer::bases("__bases__");

Serializer::Serializer() = default;
Serializer::~Serializer() = default;

Serializer& Serializer::append(char c) {
    if (!reading_) { text_ += c; }
    return *this;
}

Serializer& Serializer::open(char bracket) {
    if (reading_) { return *this; }
    count();
    if (++depth_ > limits::maxDepth) {
        throw SerializerError("nested deeper than " + std::to_string(limits::maxDepth) + " levels");
    }
    return append(bracket);
}

Serializer& Serializer::close(char bracket) {
    if (!reading_) { --depth_; }
    return append(bracket);
}

/// Counts a value, or a key until its colon: a reader would refuse more.
void Serializer::count() {
    if (++values_ > limits::maxValues) {
        throw SerializerError("more than " + std::to_string(limits::maxValues) + " values");
    }
}

Serializer& Serializer::operator<<(bool value) {
    count();
    text_ += value ? "true" : "false";
    return *this;
}

Serializer& Serializer::operator<<(int value) {
    count();
    char digits[std::numeric_limits<int>::digits10 + 3];
    text_.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    return *this;
}

Serializer& Serializer::operator<<(unsigned int value) {
    count();
    char digits[std::numeric_limits<unsigned int>::digits10 + 2];
    text_.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    return *this;
}

Serializer& Serializer::operator<<(unsigned char value) { return *this << static_cast<unsigned int>(value); }

Serializer& Serializer::operator<<(unsigned short value) { return *this << static_cast<unsigned int>(value); }

Serializer& Serializer::operator<<(double value) {
    if (!std::isfinite(value)) { throw SerializerError("cannot write a number that is not finite"); }
    count();
    char digits[32];
    text_.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    // A whole number would lose the sign of its zero.
    if (value == 0 && std::signbit(value)) { text_ += ".0"; }
    return *this;
}

Serializer& Serializer::write(std::string_view value) {
    count();
    if (!escape_) {
        escape_ = true;
        ((text_ += '"') += value) += '"';
    } else if (!appendQuoted(text_, value)) {
        throw SerializerError("cannot write a text that is not UTF-8");
    }
    return *this;
}

Serializer& Serializer::writeReference(Serializable const& object) {
    static constexpr std::string_view opening = R"({"__name__":")";
    auto const start = text_.size();
    object.serialInserter(*this);
    auto written = std::string_view(text_).substr(start);
    if (written.substr(0, opening.size()) != opening) { throw SerializerError("object without a \"" + name + '"'); }
    written.remove_prefix(opening.size());
    auto const className = written.substr(0, written.find('"'));
    if (className == knownClass_) { return *this; } // lists repeat one class
    if (!SerialRegistry::find(className)) { throw SerializerError("unknown class \"" + std::string(className) + '"'); }
    knownClass_ = className;
    return *this;
}

Serializer& opencurly(Serializer& s) { return s.open('{'); }
Serializer& closecurly(Serializer& s) { return s.close('}'); }
Serializer& openbracket(Serializer& s) { return s.open('['); }
Serializer& closebracket(Serializer& s) { return s.close(']'); }

Serializer& colon(Serializer& s) {
    if (!s.reading_) { --s.values_; } // the string before it was a key
    return s.append(':');
}

Serializer& comma(Serializer& s) { return s.append(','); }

Serializer& null(Serializer& s) {
    if (!s.reading_) {
        s.count();
        s.text_ += "null";
    }
    return s;
}

Serializer& noescape(Serializer& s) {
    if (!s.reading_) { s.escape_ = false; }
    return s;
}

} // namespace zorv
