// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace zorv {

/// All that is in a file; throws where it cannot be read.
inline std::string readFile(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) { throw std::runtime_error("no file " + path); }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace zorv
