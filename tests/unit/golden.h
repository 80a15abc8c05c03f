#pragma once

#include "tests/testPaths.h"

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace zorv {

/// The hand-written wire text of `name`, such as "PingMsg", without the line end that its file ends with.
inline std::string golden(std::string const& name) {
    auto const path = sourcePath("tests/golden/" + name + ".json");
    std::ifstream file(path, std::ios::binary);
    if (!file) { throw std::runtime_error("no golden file " + path); }
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (text.empty() || text.find('\n') != text.size() - 1) { throw std::runtime_error(path + " is not one line"); }
    text.pop_back();
    return text;
}

} // namespace zorv
