// SPDX-License-Identifier: Apache-2.0
#include "tests/support/WireTexts.h"

#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/TimeStamp.h"
#include "platform/libtransport/limits.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <set>
#include <utility>

namespace zorv {

namespace {

constexpr std::uint64_t allBits = 0xFFFF'FFFF'FFFF'FFFF;
constexpr unsigned int mostDepth = 3;

template <class T> std::string written(T const& value) {
    Serializer s;
    s << value;
    return s.str();
}

std::string hex(std::uint64_t number, std::size_t digits) {
    std::string text;
    for (; digits > 0; --digits) { text += "0123456789abcdef"[(number >> (4 * (digits - 1))) & 0xFU]; }
    return text;
}

std::string quoted(std::string const& plain) { return '"' + plain + '"'; }

/// Characters of one to four bytes, with those at the ends of their ranges.
std::string utf8(std::uint64_t code) {
    auto const character = [code](unsigned int lead, unsigned int shift) {
        std::string text(1, static_cast<char>(lead | (code >> shift)));
        while (shift > 0) {
            shift -= 6;
            text += static_cast<char>(0x80U | ((code >> shift) & 0x3FU));
        }
        return text;
    };
    if (code < 0x80) { return character(0, 0); }
    if (code < 0x800) { return character(0xC0, 6); }
    if (code < 0x10000) { return character(0xE0, 12); }
    return character(0xF0, 18);
}

} // namespace

std::map<std::string, WireClass> const& WireTexts::classes() {
    static auto const all = wireClasses();
    return all;
}

std::vector<std::string> const& WireTexts::names() {
    static auto const registered = [] {
        std::vector<std::string> names;
        for (auto const& [name, wireClass] : classes()) {
            if (wireClass.registered) { names.push_back(name); }
        }
        return names;
    }();
    return registered;
}

std::string WireTexts::object(std::string const& serialName) {
    ++depth_;
    auto text = frame(serialName);
    --depth_;
    return text;
}

/// Whether a class writes the frame of its base is seen from what a default object writes.
std::string WireTexts::frame(std::string const& serialName) {
    auto const& wireClass = classes().at(serialName);
    auto text = "{\"__name__\":" + quoted(serialName);
    if (wireClass.frame.isMember("__bases__")) {
        text += ",\"__bases__\":[";
        if (!wireClass.frame["__bases__"].empty()) { text += frame(wireClass.type.base); }
        text += ']';
    }
    return members(wireClass.type.members, std::move(text)) + '}';
}

std::string WireTexts::members(std::vector<MemberDescriptor> const& members, std::string text) {
    for (auto const& member : members) {
        text += (text.back() == '{' ? "" : ",") + quoted(member.key) + ':' + value(member.type);
    }
    return text;
}

std::string WireTexts::value(TypeDescriptor const& type) {
    using Kind = TypeDescriptor::Kind;
    switch (type.kind) {
    case Kind::boolean:
    case Kind::integer:
    case Kind::number:
    case Kind::timeStamp:
    case Kind::uuid:
    case Kind::endpoint: return scalar(type);
    case Kind::text: return text();
    case Kind::enumeration: return quoted(type.texts[index(type.texts.size())].text);
    case Kind::openSet: return quoted(openText(type));
    case Kind::flagSet: return quoted(flags(type));
    case Kind::record: return members(type.members, "{") + '}';
    case Kind::framed: return object(type.name);
    case Kind::reference: return reference(type.name);
    case Kind::list: return list(type.elements[0]);
    case Kind::pairs: return pairs(type.elements[0], type.elements[1]);
    }
    return "null";
}

std::string WireTexts::scalar(TypeDescriptor const& type) {
    using Kind = TypeDescriptor::Kind;
    if (type.kind == Kind::boolean) { return below_(2) == 0 ? "false" : "true"; }
    if (type.kind == Kind::integer) {
        auto const least = static_cast<std::int64_t>(type.minimum);
        auto const span = static_cast<std::uint64_t>(static_cast<std::int64_t>(type.maximum) - least);
        std::array<std::int64_t, 3> const edges{least, 0, static_cast<std::int64_t>(type.maximum)};
        auto const choice = index(8);
        return std::to_string(choice < edges.size() ? edges[choice] : least + static_cast<std::int64_t>(below_(span)));
    }
    if (type.kind == Kind::number) {
        if (below_(2) == 0) { return written(static_cast<double>(below_(100'000)) / 1000); }
        auto const bits = below_(allBits);
        double number = 0;
        std::memcpy(&number, &bits, sizeof number);
        return written(std::isfinite(number) ? number : 0.5);
    }
    if (type.kind == Kind::timeStamp) {
        constexpr std::int64_t first = -17'987'443'200'000; // the first millisecond of 1400
        constexpr std::uint64_t span = 271'389'744'000'000; // to the last of 9999
        return quoted(toString(TimeStamp(first + static_cast<std::int64_t>(below_(span)))));
    }
    if (type.kind == Kind::uuid) {
        auto const high = below_(allBits);
        auto const low = below_(allBits);
        return quoted(hex(high >> 32U, 8) + '-' + hex(high >> 16U, 4) + '-' + hex(high, 4) + '-' + hex(low >> 48U, 4) +
                      '-' + hex(low, 12));
    }
    auto const port = std::to_string(below_(65'536));
    if (below_(4) == 0) { return quoted("[2001:db8::" + hex(0x1000 + below_(0xE000), 4) + "]:" + port); }
    std::string address;
    for (int i = 0; i < 4; ++i) { address += (i == 0 ? "" : ".") + std::to_string(below_(256)); }
    return quoted(address + ':' + port);
}

std::string WireTexts::text() {
    std::string plain;
    auto const size = below_(10);
    // The reader knows short texts from long ones.
    if (below_(8) == 0) { plain.assign(limits::longestShort - 5 + index(10), 'x'); }
    for (std::uint64_t i = 0; i < size; ++i) {
        switch (below_(6)) {
        case 0: plain += utf8(below_(0x20)); break;
        case 1: plain += "\"\\/\x7F"[below_(4)]; break;
        case 2: plain += utf8(0x80 + below_(0x780)); break;
        case 3: plain += utf8(0x800 + below_(0xD000)); break;
        case 4: plain += utf8(0x10000 + below_(0x100000)); break;
        default: plain += static_cast<char>(' ' + below_(95)); break;
        }
    }
    return written(plain);
}

/// A value without a text is written with as many digits as those with one need.
std::string WireTexts::openText(TypeDescriptor const& type) {
    if (below_(4) != 0) { return type.texts[index(type.texts.size())].text; }
    auto const isByte = std::all_of(type.texts.begin(), type.texts.end(), [](auto const& t) { return t.value < 256; });
    auto const value = static_cast<int>(below_(isByte ? 256 : 65'536));
    auto const named =
        std::find_if(type.texts.begin(), type.texts.end(), [&](auto const& t) { return t.value == value; });
    return named != type.texts.end() ? named->text : "0x" + hex(static_cast<std::uint64_t>(value), isByte ? 2 : 4);
}

std::string WireTexts::flags(TypeDescriptor const& type) {
    std::string text;
    for (std::size_t i = 1; i < type.texts.size(); ++i) { // the first is that of the empty set
        if (below_(2) != 0) { text += (text.empty() ? "" : "|") + type.texts[i].text; }
    }
    if (text.empty()) { text = type.texts[0].text; }
    if (!type.elements.empty()) { text += '|' + type.elements[0].texts[index(type.elements[0].texts.size())].text; }
    return text;
}

std::string WireTexts::reference(std::string const& serialName) {
    static auto const kinds = [] {
        std::map<std::string, std::vector<std::string>> all;
        for (auto const& [name, wireClass] : classes()) { all[name] = kindsOf(classes(), name); }
        return all;
    }();
    auto const& those = kinds.at(serialName);
    if (depth_ >= mostDepth || below_(5) == 0) { return "null"; }
    return object(those[index(those.size())]);
}

std::string WireTexts::list(TypeDescriptor const& element) {
    std::string text = "[";
    for (auto left = count(); left > 0; --left) { text += (text.size() == 1 ? "" : ",") + value(element); }
    return text + ']';
}

std::string WireTexts::pairs(TypeDescriptor const& key, TypeDescriptor const& value) {
    std::string text = "[";
    std::set<std::string> keys;
    for (auto left = count(); left > 0; --left) {
        auto const next = this->value(key);
        if (!keys.insert(next).second) { continue; }
        text += (text.size() == 1 ? "" : ",") + ('[' + next + ',' + this->value(value) + ']');
    }
    return text + ']';
}

std::size_t WireTexts::count() { return index(depth_ >= 2 ? 3 : 6); }

} // namespace zorv
