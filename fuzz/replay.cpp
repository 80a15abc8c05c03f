// SPDX-License-Identifier: Apache-2.0
// The targets without a fuzzer: runs them on what has been found before, and writes what a fuzzer begins with.

#include "fuzz/Target.h"
#include "fuzz/silenceLog.h"

#include "tests/support/readFile.h"
#include "tests/testPaths.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using zorv::fuzz::Target;
using zorv::fuzz::targets;

std::vector<fs::path> filesIn(fs::path const& folder) {
    std::vector<fs::path> files;
    if (!fs::exists(folder)) { return files; }
    for (auto const& entry : fs::directory_iterator(folder)) { files.push_back(entry.path()); }
    std::sort(files.begin(), files.end());
    return files;
}

Target const& targetOf(std::string const& name) {
    auto const& all = targets();
    auto const found = std::find_if(all.begin(), all.end(), [&](Target const& target) { return target.name == name; });
    if (found == all.end()) { throw std::runtime_error("no target " + name); }
    return *found;
}

/// An input that makes the process end is the one that was named last.
void run(Target const& target, std::string const& name, std::string const& input) {
    std::cout << target.name << ": " << name << std::endl;
    target.run(input);
}

/// Runs a target on its corpus, its seeds, and a few changes of each seed, which are the same every time.
void replay(Target const& target, unsigned int changes) {
    for (auto const& file : filesIn(zorv::sourcePath("fuzz/corpus/" + target.name))) {
        run(target, file.filename().string(), zorv::readFile(file.string()));
    }
    auto const seeds = target.seeds();
    if (seeds.empty()) { throw std::runtime_error(target.name + " has no seeds"); }
    for (std::size_t number = 0; number < seeds.size(); ++number) {
        run(target, "seed " + std::to_string(number), seeds[number]);
        if (target.mutate == nullptr) { continue; }
        std::mt19937 random(static_cast<unsigned int>(number));
        auto input = seeds[number];
        for (unsigned int change = 1; change <= changes; ++change) {
            constexpr std::size_t most = 8192;
            input = target.mutate(std::move(input), most, random);
            run(target, "seed " + std::to_string(number) + ", change " + std::to_string(change), input);
        }
    }
}

/// A line of a dictionary: what is no printable ASCII is written in hex.
std::string quoted(std::string const& word) {
    constexpr auto digits = "0123456789abcdef";
    std::string text = "\"";
    for (auto const character : word) {
        auto const code = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            text += {'\\', character};
        } else if (code < 0x20 || code > 0x7E) {
            text += {'\\', 'x', digits[code / 16], digits[code % 16]};
        } else {
            text += character;
        }
    }
    return text + "\"\n";
}

void write(Target const& target, fs::path const& folder) {
    auto const own = folder / target.name;
    fs::create_directories(own);
    auto const seeds = target.seeds();
    for (std::size_t number = 0; number < seeds.size(); ++number) {
        std::ofstream(own / ("seed-" + std::to_string(number)), std::ios::binary) << seeds[number];
    }
    std::ofstream dictionary(folder / (target.name + ".dict"), std::ios::binary);
    auto const words = target.words == nullptr ? Target::Texts() : target.words();
    for (auto const& word : std::set<std::string>(words.begin(), words.end())) {
        if (!word.empty()) { dictionary << quoted(word); }
    }
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Runs the fuzz targets without a fuzzer.");
    std::vector<std::string> names;
    std::string folder;
    unsigned int changes = 2;
    bool isList = false;
    app.add_option("TARGET", names, "Which (default: all)");
    app.add_flag("--list", isList, "Only name the targets");
    app.add_option("--write", folder, "Write the seeds and the dictionaries to this folder, and run nothing");
    app.add_option("--changes", changes, "How often each seed is changed")->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    zorv::fuzz::silenceLog();
    try {
        std::vector<Target> chosen;
        for (auto const& name : names) { chosen.push_back(targetOf(name)); }
        for (auto const& target : names.empty() ? targets() : chosen) {
            if (isList) {
                std::cout << target.name << '\n';
            } else if (!folder.empty()) {
                write(target, folder);
            } else {
                replay(target, changes);
            }
        }
    } catch (std::exception const& error) {
        std::cerr << "fuzz-replay: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
