// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/availableMemory.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <limits>
#include <string>

namespace zorv {

namespace {

constexpr auto unlimited = std::numeric_limits<std::uint64_t>::max();

std::uint64_t ofMachine() {
    auto const pages = ::sysconf(_SC_PHYS_PAGES);
    auto const size = ::sysconf(_SC_PAGESIZE);
    return pages > 0 && size > 0 ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(size) : unlimited;
}

std::uint64_t ofLimit() {
    rlimit limit{};
    return ::getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY ? limit.rlim_cur : unlimited;
}

/// The number that the file holds; unlimited where there is no such file, or "max" in it.
std::uint64_t readLimit(std::string const& path) {
    std::uint64_t bytes = 0;
    return std::ifstream(path) >> bytes ? bytes : unlimited;
}

/// The limit of the process's own control group or of one that it is in, whichever is less.
std::uint64_t ofControlGroup() {
    auto least = unlimited;
    std::ifstream groups("/proc/self/cgroup");
    for (std::string line; std::getline(groups, line);) {
        if (line.compare(0, 3, "0::") != 0) { continue; }
        for (auto group = line.substr(3);; group.erase(group.rfind('/'))) {
            least = std::min(least, readLimit("/sys/fs/cgroup" + group + "/memory.max"));
            if (group.find('/') == std::string::npos) { break; }
        }
    }
    return least;
}

} // namespace

std::size_t availableMemory() {
    auto const least = std::min({ofMachine(), ofLimit(), ofControlGroup()});
    return static_cast<std::size_t>(std::min<std::uint64_t>(least, std::numeric_limits<std::size_t>::max()));
}

} // namespace zorv
