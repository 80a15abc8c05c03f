// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <string_view>

namespace zorv {

namespace {

std::string_view environment(char const* name) {
    auto const* const value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

} // namespace

Terminal::Terminal(int descriptor) : descriptor_(::isatty(descriptor) == 1 ? descriptor : -1) {}

std::size_t Terminal::columns() const {
    if (!isThere()) { return 0; }
    winsize size{};
    if (::ioctl(descriptor_, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) { return size.ws_col; }
    auto const text = environment("COLUMNS");
    std::size_t columns = 0;
    std::from_chars(text.data(), text.data() + text.size(), columns);
    return columns;
}

bool Terminal::hasColour() const {
    return isThere() && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
}

} // namespace zorv
