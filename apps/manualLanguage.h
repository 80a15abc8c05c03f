// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

// What manual pages are written with, in man's language.

namespace zorv::manual {

/// A word as the page's language takes it.
inline std::string plain(std::string const& text) {
    std::string escaped;
    for (char const c : text) {
        if (c == '\\') {
            escaped += "\\e";
        } else if (c == '-') {
            escaped += "\\-";
        } else {
            escaped += c;
        }
    }
    bool const isCommand = !escaped.empty() && (escaped.front() == '.' || escaped.front() == '\'');
    return isCommand ? "\\&" + escaped : escaped;
}

/// A paragraph, in lines as short as the page's language wants them.
inline std::string paragraph(std::string const& text) {
    constexpr std::size_t longest = 78;
    std::istringstream words(text);
    std::string lines;
    std::size_t length = 0; // of the line
    for (std::string word; words >> word; length += word.size()) {
        word = plain(word);
        bool const fits = length + 1 + word.size() <= longest;
        if (length != 0) { lines += fits ? ' ' : '\n'; }
        length = fits && length != 0 ? length + 1 : 0;
        lines += word;
    }
    return lines;
}

inline std::string bold(std::string const& text) { return "\\fB" + plain(text) + "\\fR"; }
inline std::string italic(std::string const& text) { return text.empty() ? text : "\\fI" + plain(text) + "\\fR"; }

inline void entry(std::ostream& page, std::string const& head, std::string const& text) {
    page << ".TP\n" << head << '\n' << (text.empty() ? "\\&" : paragraph(text)) << '\n';
}

inline std::string capitals(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

/// The head of a page, and its first section.
inline void begin(std::ostream& page, std::string const& name, char section, std::string const& description) {
    page << ".TH " << capitals(name) << ' ' << section << " \"" << QUILLET_DATE << "\" \"quillet " << QUILLET_VERSION
         << "\"\n.SH NAME\n"
         << plain(name) << " \\- " << plain(description) << '\n';
}

/// The last section: other pages, such as "zwaved(8)".
inline void end(std::ostream& page, std::vector<std::string> const& seeAlso) {
    page << ".SH SEE ALSO\n";
    for (std::size_t i = 0; i < seeAlso.size(); ++i) {
        auto const bracket = seeAlso[i].find('(');
        page << bold(seeAlso[i].substr(0, bracket)) << seeAlso[i].substr(bracket)
             << (i + 1 < seeAlso.size() ? ",\n" : "\n");
    }
}

} // namespace zorv::manual
