// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/tables/EnumTexts.h"

#include "platform/libtransport/hexDigits.h"
#include "platform/libtransport/tables/TypeDescriptor.h"
#include "platform/libtransport/throwInvalidEnum.h"

#include <boost/unordered_map.hpp>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <functional>
#include <istream>
#include <ostream>
#include <utility>

namespace zorv {

namespace {

constexpr std::string_view hexPrefix = "0x";

bool fits(unsigned int number, OpenDigits digits) {
    return digits.most >= 8 || (digits.most > 0 && number >> (4U * digits.most) == 0);
}

bool parseHex(std::string_view text, OpenDigits digits, unsigned int& number) {
    if (text.size() <= hexPrefix.size() || text.size() > hexPrefix.size() + digits.most) { return false; }
    if (text.substr(0, hexPrefix.size()) != hexPrefix) { return false; }
    auto const* const end = text.data() + text.size();
    return std::from_chars(text.data() + hexPrefix.size(), end, number, 16).ptr == end;
}

/// The same for a string and for a view of one, so that a text is found without a copy of it. The ends of identifiers
/// differ more than their middles, and the tables are small and no peer's: the first and last characters are enough.
struct TextHash {
    std::size_t operator()(std::string_view text) const noexcept {
        std::uint64_t first = 0;
        std::uint64_t last = 0;
        if (text.size() >= sizeof first) {
            std::memcpy(&first, text.data(), sizeof first);
            std::memcpy(&last, text.data() + text.size() - sizeof last, sizeof last);
        } else {
            for (auto const c : text) { first = first << 8U | static_cast<unsigned char>(c); }
        }
        auto const mixed = (first ^ last * 0x9E3779B97F4A7C15U ^ text.size()) * 0xBF58476D1CE4E5B9U;
        return static_cast<std::size_t>(mixed >> 32U);
    }
};

} // namespace

struct EnumReader::Index {
    boost::unordered_map<std::string, int, TextHash> values;
};

EnumReader::EnumReader(char const* enumName, EnumRows rows, OpenDigits digits) : enumName_(enumName), digits_(digits) {
    auto index = std::make_unique<Index>();
    index->values.max_load_factor(1.0F);
    for (auto const& row : rows) { index->values.emplace(std::string(row.text), row.value); }
    index_ = std::move(index);
}

EnumReader::~EnumReader() = default;

bool EnumReader::find(std::string_view text, int& value) const {
    auto const found = index_->values.find(text, TextHash(), std::equal_to<>());
    if (found != index_->values.end()) {
        value = found->second;
        return true;
    }
    unsigned int number = 0;
    if (!parseHex(text, digits_, number)) { return false; }
    value = static_cast<int>(number);
    return true;
}

int EnumReader::read(std::string_view text) const {
    int value = 0;
    if (!find(text, value)) { throwInvalidEnum(enumName_, std::string(text)); }
    return value;
}

std::string_view EnumTexts::search(int value) const {
    auto const* const row = std::lower_bound(rows_.begin(), rows_.end(), value,
                                             [](EnumRow const& each, int number) { return each.value < number; });
    return row != rows_.end() && row->value == value ? row->text : std::string_view();
}

bool EnumTexts::append(std::string& out, int value) const {
    if (auto const text = find(value); !text.empty()) {
        out += text;
        return true;
    }
    auto const number = static_cast<unsigned int>(value);
    if (!fits(number, digits_)) { return false; }
    out += hexPrefix;
    out += hexDigitsFrom(number, digits_.least);
    return true;
}

void EnumTexts::writeUnnamed(Serializer& s, int value) const {
    std::string digits;
    if (!append(digits, value)) { refuse(value); }
    s.writePlain(digits);
}

void EnumTexts::refuse(int value) const { throwInvalidEnum(enumName_, value); }

TypeDescriptor EnumTexts::describe() const {
    TypeDescriptor type;
    type.kind = digits_.most > 0 ? TypeDescriptor::Kind::openSet : TypeDescriptor::Kind::enumeration;
    type.name = enumName_;
    for (auto const& row : rows_) { type.texts.push_back({row.value, std::string(row.text)}); }
    return type;
}

namespace enums {

void put(std::ostream& os, std::string_view text) {
    os.width(0);
    os.write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::string readWord(std::istream& is) {
    std::string word;
    is.width(0);
    is >> word;
    return word;
}

std::string_view firstWord(std::string_view text) {
    constexpr auto blanks = " \t\n\v\f\r";
    auto const begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) { return {}; }
    auto const word = text.substr(begin);
    return word.substr(0, word.find_first_of(blanks));
}

} // namespace enums

} // namespace zorv
