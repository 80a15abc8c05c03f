// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/words.h"

#include "apps/quillet/Command.h"

#include "platform/libtransport/tables/TypeDescriptor.h"
#include "platform/libzorvshared/Device.h"
#include "platform/libzorvshared/ZwaveAddress.h"
#include "zwave/libquillet/Catalogue.h"

namespace zorv {

std::vector<std::string> messageWords() {
    std::vector<std::string> words;
    for (auto const& message : describeCatalogue()) {
        words.push_back(message.name.substr(message.name.rfind(':') + 1));
    }
    return words;
}

std::vector<std::string> valueWords(TypeDescriptor const& type, TypedWord const& typed) {
    using Kind = TypeDescriptor::Kind;
    std::vector<std::string> words;
    bool const isDevice = type.kind == Kind::reference && type.name.find(Device::NAME) != std::string::npos;
    if (isDevice || type.name == "ZwaveAddress") { return typed.nodes; }
    if (type.kind == Kind::list) {
        auto const before = typed.text.substr(0, typed.text.rfind(',') + 1);
        for (auto const& word : valueWords(type.elements.at(0), typed)) { words.push_back(before + word); }
        return words;
    }
    for (auto const& text : type.texts) { words.push_back(text.text); }
    return words;
}

std::vector<std::string> splitLine(std::string const& line) {
    std::vector<std::string> words{""};
    char quote = '\0';
    bool isOpen = false; // a word has begun, maybe an empty one in quotes
    for (std::size_t i = 0; i < line.size(); ++i) {
        auto const character = line[i];
        if (quote != '\0') {
            if (character == quote) {
                quote = '\0';
            } else {
                words.back() += character;
            }
        } else if (character == ' ' || character == '\t') {
            if (isOpen) { words.emplace_back(); }
            isOpen = false;
        } else if (!isOpen && character == '{') {
            words.back() = line.substr(i);
            return words;
        } else if (!isOpen && (character == '"' || character == '\'')) {
            quote = character;
            isOpen = true;
        } else {
            words.back() += character;
            isOpen = true;
        }
    }
    return words;
}

} // namespace zorv
