// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/testPaths.h"
#include "zwave/libserialapi/SessionLayer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace zorv::serialapi {

/// A line of a recording: `host|module HEX...  # comment`.
struct Line {
    std::string place; ///< file and line
    Side sender;
    Bytes bytes;
    std::string comment;
};

inline std::vector<Line> readRecording(std::filesystem::path const& path) {
    std::vector<Line> lines;
    std::ifstream file(path);
    std::string text;
    for (int number = 1; std::getline(file, text); ++number) {
        if (text.empty() || text[0] == '#') { continue; }
        Line line{path.filename().string() + ':' + std::to_string(number), Side::host, {}, {}};
        auto const hash = text.find('#');
        if (hash != std::string::npos) { line.comment = text.substr(hash); }
        std::istringstream words(text.substr(0, hash));
        std::string word;
        words >> word;
        EXPECT_TRUE(word == "host" || word == "module") << line.place;
        line.sender = word == "host" ? Side::host : Side::module;
        while (words >> word) { line.bytes.push_back(static_cast<Byte>(std::stoul(word, nullptr, 16))); }
        lines.push_back(std::move(line));
    }
    return lines;
}

inline std::vector<std::filesystem::path> recordings() {
    std::vector<std::filesystem::path> paths;
    for (auto const& entry : std::filesystem::directory_iterator(sourcePath("tests/recorded"))) {
        if (entry.path().extension() == ".log") { paths.push_back(entry.path()); }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

} // namespace zorv::serialapi
