// SPDX-License-Identifier: Apache-2.0
// Time and peak memory of ManageNvmMsg::read over backup files of 1, 8 and 64 MiB; of small
// blobs, of 32 MiB.
//
// Each reading has a process of its own, because a process's peak memory never falls. The peak is that of the reading:
// what the process took before is taken off. Every file is read three times; the shortest time and the highest peak
// count. Ends with 1 where a file takes eight times its size or more.

#include "zwave/libquillet/ManageNvmMsg.h"

#include <boost/filesystem/operations.hpp>
#include <boost/make_shared.hpp>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

namespace {

constexpr double mebi = 1024.0 * 1024.0;

struct Reading {
    double seconds;
    double peak; ///< bytes
};

double peakMemory() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) * 1024.0;
}

/// A saved message of about `size` bytes, with blobs of `blobBytes` bytes each.
void writeBackup(std::string const& path, double size, std::size_t blobBytes) {
    zorv::ManageNvmMsg message(zorv::ManageNvmOp::save, 0xC0FFEE01, zorv::ZResult::success, 100);
    zorv::OctetVec bytes(blobBytes);
    std::uint32_t state = 1;
    unsigned int offset = 0;
    double const frame = 190; // around a blob's contents, about
    double written = 0;
    while (written < size) {
        for (auto& byte : bytes) {
            state = state * 1664525U + 1013904223U;
            byte = static_cast<unsigned char>(state >> 24U);
        }
        auto const blob = boost::make_shared<zorv::Blob>("area " + std::to_string(offset), offset);
        if (blob->setContents(bytes)) { throw std::runtime_error("cannot encode"); }
        message.addBlob(blob);
        offset += static_cast<unsigned int>(blobBytes);
        written += frame + static_cast<double>(blob->contents().size());
    }
    std::ofstream file(path, std::ios::binary);
    message.print(file);
    if (!file.flush()) { throw std::runtime_error("cannot write " + path); }
}

Reading readBackup(std::string const& path) {
    zorv::ManageNvmMsg message;
    auto const before = peakMemory();
    auto const start = std::chrono::steady_clock::now();
    if (message.read(path) != zorv::ZResult::success) { throw std::runtime_error("cannot read " + path); }
    std::chrono::duration<double> const taken = std::chrono::steady_clock::now() - start;
    return {taken.count(), peakMemory() - before};
}

/// What `work` returns in a process of its own.
template <class Work> Reading inChildProcess(Work const& work) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) { throw std::runtime_error("no pipe"); }
    auto const child = fork();
    if (child < 0) { throw std::runtime_error("no process"); }
    if (child == 0) {
        try {
            Reading const reading = work();
            _exit(write(ends[1], &reading, sizeof reading) == sizeof reading ? 0 : 1);
        } catch (std::exception const& error) {
            std::fprintf(stderr, "%s\n", error.what());
            _exit(1);
        }
    }
    close(ends[1]); // so that a child that fails ends the reading
    Reading reading = {};
    auto const count = read(ends[0], &reading, sizeof reading);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (status != 0 || count != sizeof reading) { throw std::runtime_error("the reading failed"); }
    return reading;
}

/// Prints one row; returns the peak as a multiple of the file's size.
double measure(std::string const& path, double size, std::size_t blobBytes) {
    inChildProcess([&] {
        writeBackup(path, size, blobBytes);
        return Reading{};
    });
    auto const fileSize = static_cast<double>(boost::filesystem::file_size(path));
    Reading all{1e9, 0};
    for (int run = 0; run < 3; ++run) {
        auto const reading = inChildProcess([&] { return readBackup(path); });
        all.seconds = std::min(all.seconds, reading.seconds);
        all.peak = std::max(all.peak, reading.peak);
    }
    auto const multiple = all.peak / fileSize;
    std::printf("%8.1f MiB  %9zu B  %7.3f s  %6.1f MiB/s  %7.1f MiB  %5.2f\n", fileSize / mebi, blobBytes, all.seconds,
                fileSize / mebi / all.seconds, all.peak / mebi, multiple);
    std::fflush(stdout);
    return multiple;
}

} // namespace

int main() try {
    auto const path =
        (boost::filesystem::temp_directory_path() / boost::filesystem::unique_path("quillet-bench-%%%%-%%%%")).string();
    std::printf("        file    each blob       time        speed         peak  times the file\n");
    std::fflush(stdout); // the processes below would write it again
    double highest = 0;
    for (auto const blobBytes : {std::size_t(256), std::size_t(4096), std::size_t(1) << 20U}) {
        double const largest = blobBytes < 1024 ? 32 : 64; // more small blobs are more values than a text may have
        for (auto const size : {1.0, 8.0, largest}) {
            highest = std::max(highest, measure(path, size * mebi, blobBytes));
        }
    }
    boost::filesystem::remove(path);
    return highest < 8 ? 0 : 1;
} catch (std::exception const& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
