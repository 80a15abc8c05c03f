// SPDX-License-Identifier: Apache-2.0
// Round trips per second through the daemon, and through a server that only sends lines back, for 1, 8, 64 and 512
// clients, or as many as asked for, that each wait for their answer before they ask again.
//
// The servers take turns, round by round, so that what else the machine does meets both. Each round is one JSON object
// on standard output.

#include "bench/daemon/LoadClient.h"
#include "bench/daemon/Server.h"

#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

using namespace std::chrono_literals;

/// A network whose nodes answer at once, in a file that goes with the object.
class QuickNetwork {
public:
    QuickNetwork() {
        std::string name = "/tmp/quillet-bench-XXXXXX";
        int const file = ::mkstemp(name.data());
        if (file < 0) { throw std::runtime_error("cannot make " + name); }
        ::close(file);
        path_ = name;
        std::ofstream(path_) << R"({"homeId":"c0ffee01","controller":1,"nodes":[{"id":5,"latencyMs":0}]})";
    }
    ~QuickNetwork() { ::unlink(path_.c_str()); }

    QuickNetwork(QuickNetwork const&) = delete;
    QuickNetwork& operator=(QuickNetwork const&) = delete;

    std::string const& path() const noexcept { return path_; }

private:
    std::string path_;
};

double percentile(std::vector<double>& values, double part) {
    if (values.empty()) { return 0; }
    auto const place = values.begin() + static_cast<std::ptrdiff_t>(part * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

void measure(char const* name, bench::Server const& server, std::size_t connections, std::chrono::milliseconds round) {
    bench::LoadClient client(server.port(), connections);
    client.run(round / 5); // everything has been used once
    auto const before = server.cpuSeconds();
    auto load = client.run(round);
    auto const answers = static_cast<double>(load.waits.size());
    std::printf(R"({"server":"%s","connections":%zu,"perSecond":%.0f,"cpuMicroseconds":%.2f,"p50":%.1f,"p99":%.1f})"
                "\n",
                name, connections, answers / load.seconds, (server.cpuSeconds() - before) * 1e6 / answers,
                percentile(load.waits, 0.5), percentile(load.waits, 0.99));
    std::fflush(stdout);
}

int usage() {
    std::fputs("Usage: bench-daemon ZWAVED ECHO ROUNDS MILLISECONDS [CONNECTIONS]...\n", stderr);
    return 2;
}

/// The numbers of clients that were asked for, or the usual ones.
std::vector<std::size_t> connectionCounts(int count, char** texts) {
    if (count == 0) { return {1, 8, 64, 512}; }
    std::vector<std::size_t> counts;
    std::transform(texts, texts + count, std::back_inserter(counts), [](char const* text) { return std::stoul(text); });
    return counts;
}

} // namespace

int main(int argc, char** argv) try {
    if (argc < 5) { return usage(); }
    int const rounds = std::atoi(argv[3]);
    std::chrono::milliseconds const round(std::atoi(argv[4]));
    if (rounds < 1 || round < 1ms) { return usage(); }
    rlimit files{};
    ::getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = files.rlim_max; // for 512 connections, of the servers too
    ::setrlimit(RLIMIT_NOFILE, &files);
    bench::pinTo(1);
    QuickNetwork const network;
    bench::Server const daemon(
        {argv[1], "--port", "0", "--network", network.path(), "--log-level", "error", "--max-clients", "1024"});
    bench::Server const echo({argv[2]});
    for (auto const connections : connectionCounts(argc - 5, argv + 5)) {
        for (int i = 0; i < rounds; ++i) {
            measure("zwaved", daemon, connections, round);
            measure("echo", echo, connections, round);
        }
    }
    return 0;
} catch (std::exception const& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
