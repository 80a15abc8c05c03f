// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/readFile.h"
#include "tests/testPaths.h"

#include <boost/filesystem/directory.hpp>
#include <boost/filesystem/path.hpp>

#include <set>
#include <stdexcept>
#include <string>

namespace zorv {

/// The hand-written wire text of `name`, such as "PingMsg", without the line end that its file ends with.
inline std::string golden(std::string const& name) {
    auto const path = sourcePath("tests/golden/" + name + ".json");
    auto text = readFile(path);
    if (text.empty() || text.find('\n') != text.size() - 1) { throw std::runtime_error(path + " is not one line"); }
    text.pop_back();
    return text;
}

/// The names of all golden texts.
inline std::set<std::string> goldenNames() {
    std::set<std::string> names;
    for (auto const& entry : boost::filesystem::directory_iterator(sourcePath("tests/golden"))) {
        if (entry.path().extension() == ".json") { names.insert(entry.path().stem().string()); }
    }
    return names;
}

} // namespace zorv
