// SPDX-License-Identifier: Apache-2.0
#include "fuzz/recordedLines.h"

#include "tests/testPaths.h"
#include "zwave/libserialapi/functions/FrameDissector.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace zorv::fuzz {

namespace {

constexpr std::size_t mostLines = 60;

std::vector<RecordedLine> read(std::filesystem::path const& path) {
    std::vector<RecordedLine> lines;
    std::ifstream file(path);
    for (std::string text; lines.size() < mostLines && std::getline(file, text);) {
        std::istringstream words(text.substr(0, text.find('#')));
        std::string word;
        if (!(words >> word)) { continue; }
        RecordedLine line{word == "host", {}};
        while (words >> word) { line.bytes.push_back(static_cast<serialapi::Byte>(std::stoul(word, nullptr, 16))); }
        lines.push_back(std::move(line));
    }
    return lines;
}

} // namespace

std::vector<std::vector<RecordedLine>> recordedLines() {
    std::vector<std::filesystem::path> paths;
    for (auto const& entry : std::filesystem::directory_iterator(sourcePath("tests/recorded"))) {
        if (entry.path().extension() == ".log") { paths.push_back(entry.path()); }
    }
    std::sort(paths.begin(), paths.end());
    std::vector<std::vector<RecordedLine>> recordings;
    for (auto const& path : paths) { recordings.push_back(read(path)); }
    return recordings;
}

Target::Texts functionWords() {
    Target::Texts words;
    for (auto const& function : serialapi::describeFunctions()) {
        words.emplace_back(1, static_cast<char>(function.id));
    }
    return words;
}

} // namespace zorv::fuzz
