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
#include <utility>

// The writer; SerializerReader.cpp has the reader.

namespace zorv {

FrameKey const Serializer::name("__name__");
FrameKey const Serializer::bases("__bases__");

Serializer::Serializer() = default;
Serializer::~Serializer() = default;

void Serializer::refuseMoreValues() {
    throw SerializerError("more than " + std::to_string(limits::maxValues) + " values");
}

void Serializer::refuseDeeper() {
    throw SerializerError("nested deeper than " + std::to_string(limits::maxDepth) + " levels");
}

Serializer& Serializer::append(char c) {
    if (!reading_) { written_.append(c); }
    return *this;
}

Serializer& Serializer::open(char bracket) {
    if (reading_) { return *this; }
    count();
    deepen();
    return append(bracket);
}

Serializer& Serializer::close(char bracket) {
    if (!reading_) { --depth_; }
    return append(bracket);
}

Serializer& Serializer::openFrame(std::string_view serialName) {
    count();
    deepen();
    writeRaw(R"({"__name__":)").writePlain(serialName);
    count();
    deepen();
    return writeRaw(R"(,"__bases__":[)");
}

Serializer& Serializer::operator<<(bool value) {
    count();
    return value ? writeRaw("true") : writeRaw("false");
}

template <class Number> Serializer& Serializer::writeNumber(Number value) {
    constexpr std::size_t most = 32; // more than any of them has
    count();
    auto* const begin = written_.room(most);
    written_.took(std::to_chars(begin, begin + most, value).ptr);
    return *this;
}

Serializer& Serializer::operator<<(int value) { return writeNumber(value); }

Serializer& Serializer::operator<<(unsigned int value) { return writeNumber(value); }

Serializer& Serializer::operator<<(unsigned char value) { return writeNumber(static_cast<unsigned int>(value)); }

Serializer& Serializer::operator<<(unsigned short value) { return writeNumber(static_cast<unsigned int>(value)); }

Serializer& Serializer::operator<<(double value) {
    if (!std::isfinite(value)) { throw SerializerError("cannot write a number that is not finite"); }
    writeNumber(value);
    // A whole number would lose the sign of its zero.
    if (value == 0 && std::signbit(value)) { writeRaw(".0"); }
    return *this;
}

Serializer& Serializer::write(std::string_view value) {
    if (std::exchange(escape_, true)) {
        count();
        if (!appendQuoted(written_, value)) { throw SerializerError("cannot write a text that is not UTF-8"); }
        return *this;
    }
    return writePlain(value);
}

Serializer& Serializer::writeReference(Serializable const& object) {
    static constexpr std::string_view opening = R"({"__name__":")";
    auto const start = written_.size();
    object.serialInserter(*this);
    auto written = std::string_view(written_.all()).substr(start);
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
        s.writeRaw("null");
    }
    return s;
}

Serializer& noescape(Serializer& s) {
    if (!s.reading_) { s.escape_ = false; }
    return s;
}

} // namespace zorv
