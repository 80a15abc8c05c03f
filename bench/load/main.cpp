// SPDX-License-Identifier: Apache-2.0
// What it costs a process to load a shared library with all that it needs: the time that dlopen takes, and the memory
// that the process has afterwards and had not before. Other libraries may be loaded first, whose share that is not. Each
// time is that of a new process; the least and the median are shown, in one row of a table.

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Cost {
    double milliseconds = 0;
    long residentKiB = 0;
    long ownKiB = 0; ///< pages that were written to: another process that loads the library has its own
};

/// A row of the sums over all mappings of this process, KiB.
long memory(std::string const& row) {
    std::ifstream sums("/proc/self/smaps_rollup");
    for (std::string line; std::getline(sums, line);) {
        if (line.compare(0, row.size() + 1, row + ':') == 0) { return std::stol(line.substr(row.size() + 1)); }
    }
    throw std::runtime_error("the system does not tell " + row);
}

void open(char const* library) {
    if (::dlopen(library, RTLD_NOW) == nullptr) { throw std::runtime_error(::dlerror()); }
}

Cost load(char const* library, std::vector<char const*> const& first) {
    for (auto const* const other : first) { open(other); }
    auto const resident = memory("Rss");
    auto const own = memory("Anonymous");
    auto const start = std::chrono::steady_clock::now();
    open(library);
    std::chrono::duration<double, std::milli> const time = std::chrono::steady_clock::now() - start;
    return {time.count(), memory("Rss") - resident, memory("Anonymous") - own};
}

Cost loadInNewProcess(char const* library, std::vector<char const*> const& first) {
    int ends[2];
    if (::pipe(ends) != 0) { throw std::runtime_error("no pipe"); }
    auto const child = ::fork();
    if (child == 0) {
        try {
            auto const cost = load(library, first);
            _exit(::write(ends[1], &cost, sizeof cost) == sizeof cost ? 0 : 1);
        } catch (std::exception const& error) { std::fprintf(stderr, "%s\n", error.what()); }
        _exit(1);
    }
    ::close(ends[1]);
    Cost cost;
    bool const told = ::read(ends[0], &cost, sizeof cost) == sizeof cost;
    ::close(ends[0]);
    ::waitpid(child, nullptr, 0);
    if (!told) { throw std::runtime_error(std::string("cannot load ") + library); }
    return cost;
}

} // namespace

int main(int argc, char** argv) try {
    int const times = argc >= 3 ? std::atoi(argv[2]) : 0;
    if (times < 1) {
        std::fputs("Usage: bench-load LIBRARY TIMES [LOADED-FIRST...]\n", stderr);
        return 2;
    }
    std::vector<char const*> const first(argv + 3, argv + argc);
    loadInNewProcess(argv[1], first); // the files are in memory afterwards
    std::vector<Cost> costs;
    for (int i = 0; i < times; ++i) { costs.push_back(loadInNewProcess(argv[1], first)); }
    auto const middle = costs.begin() + times / 2;
    std::sort(costs.begin(), costs.end(), [](Cost const& a, Cost const& b) { return a.milliseconds < b.milliseconds; });
    std::printf("%.2f %.2f %ld %ld\n", costs.front().milliseconds, middle->milliseconds, middle->residentKiB,
                middle->ownKiB);
    return 0;
} catch (std::exception const& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
