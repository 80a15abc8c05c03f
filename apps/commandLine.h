// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

// What the command lines of all programs share: numbers with a range, and the messages for wrong usage.

namespace zorv {

/// Accepts whole numbers of the range, in decimal digits.
template <class Number> CLI::Validator wholeNumber(Number lowest, Number highest) {
    return CLI::Validator(
        [lowest, highest](std::string const& text) {
            Number number{};
            auto const* const end = text.data() + text.size();
            auto const [rest, error] = std::from_chars(text.data(), end, number);
            if (error == std::errc() && rest == end && number >= lowest && number <= highest) { return std::string(); }
            return "expected a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest) +
                   ", got " + text;
        },
        "");
}

/// How many characters have to be inserted, removed or replaced to make one word of the other.
inline std::size_t editDistance(std::string const& from, std::string const& to) {
    std::vector<std::size_t> row(to.size() + 1);
    for (std::size_t i = 0; i < row.size(); ++i) { row[i] = i; }
    for (std::size_t i = 1; i <= from.size(); ++i) {
        auto diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= to.size(); ++j) {
            auto const replaced = diagonal + (from[i - 1] == to[j - 1] ? 0U : 1U);
            diagonal = std::exchange(row[j], std::min({replaced, row[j] + 1, row[j - 1] + 1}));
        }
    }
    return row[to.size()];
}

/// Whether a text begins with a word, whatever the case of its letters.
inline bool beginsWith(std::string const& text, std::string const& word) {
    return word.size() <= text.size() && std::equal(word.begin(), word.end(), text.begin(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
           });
}

/// Suggests the known word that is nearest to an unknown one, or the first that goes on where it ends; empty if there is
/// neither.
inline std::string suggest(std::string const& word, std::vector<std::string> const& known) {
    auto best = word.size() / 3 + 2; // one more than may differ
    auto const longer = word.empty() ? known.end()
                                     : std::find_if(known.begin(), known.end(),
                                                    [&word](auto const& each) { return beginsWith(each, word); });
    std::string nearest = longer == known.end() ? "" : *longer;
    for (auto const& candidate : known) {
        auto const distance = editDistance(word, candidate);
        if (distance < best) {
            best = distance;
            nearest = candidate;
        }
    }
    return nearest.empty() ? nearest : "; did you mean \"" + nearest + "\"?";
}

/// The complaint about an unknown word on the command line; empty if there is no unknown word.
inline std::string unknownWord(CLI::App const& app) {
    auto const words = app.remaining(true);
    if (words.empty() || words.front().empty()) { return ""; }
    auto const word =
        words.front().substr(0, words.front().front() == '-' ? words.front().find('=') : std::string::npos);
    auto const* level = &app;
    while (!level->get_subcommands().empty()) { level = level->get_subcommands().front(); }
    std::vector<std::string> known;
    if (word.front() == '-') {
        for (auto const* at : {level, &app}) {
            for (auto const* const option : at->get_options()) {
                for (auto const& name : option->get_lnames()) { known.push_back("--" + name); }
            }
        }
        return "unknown option \"" + word + '"' + suggest(word, known);
    }
    for (auto const* const command : level->get_subcommands({})) { known.push_back(command->get_name()); }
    return (known.empty() ? "unexpected argument \"" : "unknown command \"") + word + '"' + suggest(word, known);
}

/// Prints the requested help, or the complaint on standard error. Returns the exit code: 0, or `wrongUsage`.
inline int endWithUsage(CLI::App const& app, CLI::ParseError const& error, int wrongUsage) {
    if (error.get_exit_code() == 0) { return app.exit(error); }
    auto const unknown = unknownWord(app);
    std::cerr << app.get_name() << ": " << (unknown.empty() ? error.what() : unknown)
              << "\nRun with --help for more information.\n";
    return wrongUsage;
}

} // namespace zorv
