// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace bench {

/// The texts of an enumeration or a flag set, as a program would keep them that reads its messages by another library:
/// an array by value, and one look-up by text that covers sets of flags and unnamed values too.
template <class Enum> class EnumTexts {
public:
    static EnumTexts const& instance() {
        static EnumTexts const texts;
        return texts;
    }

    std::string_view text(Enum value) const { return texts_.at(static_cast<std::size_t>(value)); }

    Enum parse(std::string_view text) const {
        auto const found = values_.find(text);
        if (found == values_.end()) { throw std::invalid_argument("no such text: " + std::string(text)); }
        return found->second;
    }

private:
    static constexpr int numbers = 1024; // more than the bytes of the interface and the known manufacturers

    EnumTexts() {
        texts_.resize(numbers);
        for (int number = 0; number < numbers; ++number) {
            auto const value = static_cast<Enum>(number);
            try {
                texts_[static_cast<std::size_t>(number)] = toString(value);
            } catch (std::invalid_argument const&) { continue; }
            values_.emplace(texts_[static_cast<std::size_t>(number)], value);
        }
    }

    std::vector<std::string> texts_; // empty where the enumeration has no such value
    std::unordered_map<std::string_view, Enum> values_;
};

template <class Enum> std::enable_if_t<std::is_enum_v<Enum>, std::string_view> textOf(Enum value) {
    return EnumTexts<Enum>::instance().text(value);
}

template <class Enum> std::enable_if_t<std::is_enum_v<Enum>> parseText(std::string_view text, Enum& value) {
    value = EnumTexts<Enum>::instance().parse(text);
}

} // namespace bench
