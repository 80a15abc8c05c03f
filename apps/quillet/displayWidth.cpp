// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/displayWidth.h"

#include <algorithm>
#include <clocale>
#include <cwchar>

#include <locale.h>

namespace zorv {

namespace {

/// The C library knows the widths, but only of characters that the thread's locale has. C.UTF-8 is part of the C library
/// itself; the user's locale may have none but ASCII.
class Utf8Locale {
public:
    Utf8Locale() : before_(::uselocale(utf8())) {}
    ~Utf8Locale() { ::uselocale(before_); }

    Utf8Locale(Utf8Locale const&) = delete;
    Utf8Locale& operator=(Utf8Locale const&) = delete;

private:
    static locale_t utf8() {
        static locale_t const locale = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return locale; // null leaves the thread's locale as it is
    }

    locale_t before_;
};

struct Character {
    std::size_t bytes;
    std::size_t columns;
};

Character characterAt(std::string const& text, std::size_t position, std::mbstate_t& state) {
    wchar_t character = 0;
    auto const bytes = std::mbrtowc(&character, text.data() + position, text.size() - position, &state);
    if (bytes == 0 || bytes > text.size() - position) { // a byte that begins no character
        state = {};
        return {1, 1};
    }
    return {bytes, static_cast<std::size_t>(std::max(::wcwidth(character), 0))};
}

} // namespace

std::size_t displayWidth(std::string const& text) {
    Utf8Locale const locale;
    std::mbstate_t state{};
    std::size_t width = 0;
    for (std::size_t position = 0; position < text.size();) {
        auto const character = characterAt(text, position, state);
        position += character.bytes;
        width += character.columns;
    }
    return width;
}

std::string fitted(std::string const& text, std::size_t columns) {
    if (displayWidth(text) <= columns) { return text; }
    if (columns == 0) { return {}; }
    Utf8Locale const locale;
    std::mbstate_t state{};
    std::size_t position = 0;
    for (std::size_t width = 0; position < text.size();) {
        auto const character = characterAt(text, position, state);
        if (width + character.columns > columns - 1) { break; }
        position += character.bytes;
        width += character.columns;
    }
    return text.substr(0, position) + "…";
}

} // namespace zorv
