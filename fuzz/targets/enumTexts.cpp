// SPDX-License-Identifier: Apache-2.0
// The texts of all enumerations: one that somebody else has written, and those of any number.

#include "fuzz/Script.h"
#include "fuzz/Target.h"

#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/tables/EnumTexts.h"
#include "platform/libtransport/tables/TypeDescriptor.h"
#include "platform/libtransport/throwInvalidEnum.h"
#include "tests/support/enumerations.h"

#include <optional>
#include <set>
#include <sstream>

namespace zorv::fuzz {

namespace {

/// What an operation gives, or nothing where the enumeration does not have what it was asked for.
template <class Operation> auto attempt(Operation const& operation) -> std::optional<decltype(operation())> {
    try {
        return operation();
    } catch (InvalidEnumError const&) { return std::nullopt; }
}

/// Whether a text consists of an enumeration's own, or of numbers.
bool isMadeOf(TypeDescriptor const& type, std::string const& text) {
    std::set<std::string> own;
    for (auto const& row : type.texts) { own.insert(row.text); }
    for (auto const& field : type.elements) {
        for (auto const& row : field.texts) { own.insert(row.text); }
    }
    std::istringstream words(text);
    bool isOwn = true;
    for (std::string word; isOwn && std::getline(words, word, '|');) {
        isOwn = own.count(word) != 0 || (type.kind == TypeDescriptor::Kind::openSet && word.rfind("0x", 0) == 0);
    }
    return isOwn;
}

template <class Enum> void read(std::string const& text) {
    Enum whole{};
    bool const isTaken = tryParse(text, whole);
    expect(!isTaken || isMadeOf(describe(Enum()), text), "what is taken is a text of the enumeration: " + text);
    auto const word = std::string(enums::firstWord(text));
    Enum first{};
    auto const expected = tryParse(word, first) ? std::optional(first) : std::nullopt;
    expect(attempt([&] {
               Enum value{};
               parse(text, value);
               return value;
           }) == expected,
           "parse reads the first word");
    expect(attempt([&] {
               std::istringstream is(text);
               Enum value{};
               is >> value;
               return value;
           }) == expected,
           "a stream reads the first word");
    for (auto const& value : {isTaken ? std::optional(whole) : std::nullopt, expected}) {
        if (value) {
            expect(attempt([&] { return toString(*value); }).has_value(), "what is read can be written");
        }
    }
}

template <class Enum> void write(int number) {
    auto const value = static_cast<Enum>(number);
    auto const text = attempt([value] { return toString(value); });
    expect(attempt([value] {
               std::string appended;
               appendText(appended, value);
               return appended;
           }) == text,
           "appendText writes what toString gives");
    expect(attempt([value] {
               std::ostringstream os;
               os << value;
               return os.str();
           }) == text,
           "a stream is given the same");
    auto const json = attempt([value] {
        Serializer s;
        write(s, value);
        return s.str();
    });
    expect(json == (text ? std::optional('"' + *text + '"') : std::nullopt), "and so is a serializer");
    if (!text) { return; }
    Enum read{};
    expect(tryParse(*text, read) && read == value, "what was written is read: " + *text);
}

struct Operations {
    std::string name;
    std::vector<EnumText> texts;
    void (*read)(std::string const&);
    void (*write)(int);
};

template <class... Enums> std::vector<Operations> operationsOf(EnumList<Enums...>) {
    return {{describe(Enums()).name, describe(Enums()).texts, &read<Enums>, &write<Enums>}...};
}

std::vector<Operations> const& enumerations() {
    static auto const all = operationsOf(Enumerations());
    return all;
}

void run(std::string const& input) {
    Script script(input);
    auto const& operations = enumerations()[script.byte() % enumerations().size()];
    auto const high = script.number();
    operations.write(static_cast<int>(high << 16U | script.number()));
    operations.read(input.substr(std::min<std::size_t>(input.size(), 5)));
}

/// The first two values of each, and all texts of the longest sets.
Target::Texts seeds() {
    Target::Texts texts;
    for (std::size_t i = 0; i < enumerations().size(); ++i) {
        std::string all;
        auto const add = [&texts, i](int value, std::string const& text) {
            auto const number = static_cast<unsigned int>(value);
            ScriptWriter script;
            script.byte(static_cast<unsigned int>(i)).number(number >> 16U).number(number & 0xFFFFU);
            texts.push_back(script.text() + text);
        };
        for (auto const& row : enumerations()[i].texts) {
            if (all.size() < 60) { add(row.value, row.text); }
            all += (all.empty() ? "" : "|") + row.text;
        }
        add(0x7FFF, all);
    }
    return texts;
}

Target::Texts words() {
    std::set<std::string> words{"|", "0x", " ", "0xff"};
    for (auto const& enumeration : enumerations()) {
        for (auto const& row : enumeration.texts) { words.insert(row.text); }
    }
    return {words.begin(), words.end()};
}

Registration const registration({"enumTexts", &run, &seeds, &words});

} // namespace

} // namespace zorv::fuzz
