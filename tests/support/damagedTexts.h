// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/golden.h"

#include <cstddef>
#include <random>
#include <string>
#include <vector>

// Damaged texts, as a faulty or hostile peer may send them.

namespace zorv {

inline std::vector<std::string> goldenTexts() {
    std::vector<std::string> texts;
    for (auto const& name : goldenNames()) { texts.push_back(golden(name)); }
    return texts;
}

/// Damages texts in ways that keep most of them near to being messages. One seed gives one series of texts.
class Damage {
public:
    Damage(std::vector<std::string> const& texts, unsigned int seed) : texts_(texts), random_(seed) {}

    std::string mutant() {
        auto text = texts_[below(texts_.size())];
        for (auto count = 1 + below(3); count > 0 && !text.empty(); --count) { damage(text); }
        return text;
    }

private:
    std::size_t below(std::size_t limit) { return random_() % limit; }

    void damage(std::string& text) {
        auto const at = below(text.size());
        switch (below(6)) {
        case 0: text[at] = static_cast<char>(below(256)); break;
        case 1: text.erase(at, 1 + below(8)); break;
        case 2: text.insert(at, tokens_[below(tokens_.size())]); break;
        case 3: replaceValue(text, at); break;
        case 4: text.resize(at); break;
        case 5: splice(text, at); break;
        }
    }

    /// Puts another value behind the next colon, up to the next comma or closing bracket.
    void replaceValue(std::string& text, std::size_t at) {
        auto const colon = text.find(':', at);
        if (colon == std::string::npos) { return; }
        auto const end = text.find_first_of(",}]", colon);
        text.replace(colon + 1, end == std::string::npos ? end : end - colon - 1, tokens_[below(tokens_.size())]);
    }

    void splice(std::string& text, std::size_t at) {
        auto const& other = texts_[below(texts_.size())];
        auto const from = below(other.size());
        text.replace(at, below(40), other, from, below(40));
    }

    std::vector<std::string> const& texts_;
    std::vector<std::string> const tokens_{
        "null",   "true",    "-1",   "0",     "255", "256",  "4294967296", "1e999",       "0.5",         "[]", "{}",
        "[null]", "[[],[]]", "\"\"", "\"x\"", "|",   "\\u0", "\xc3",       "\"invalid\"", "[[{},null]]", " ",  "\n\t"};
    std::mt19937 random_;
};

} // namespace zorv
