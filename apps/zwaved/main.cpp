// SPDX-License-Identifier: Apache-2.0
#include "apps/commandLine.h"
#include "apps/defaultLineLimit.h"
#include "apps/zwaved/Daemon.h"
#include "apps/zwaved/readNetwork.h"

#include "platform/libio/TcpBudget.h"
#include "platform/libio/availableMemory.h"
#include "platform/libzorvlogger/Logger.h"
#include "platform/libzorvlogger/printable.h"

#include <CLI/CLI.hpp>

#include <boost/asio/ip/tcp.hpp>

#include <malloc.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <iostream>
#include <map>
#include <memory>
#include <string>

namespace {

constexpr int cannotRun = 1;
constexpr int wrongUsage = 2;

constexpr std::size_t kibibyte = 1024;
constexpr std::size_t mebibyte = 1024 * kibibyte;
constexpr std::size_t mostBytes = 1024 * mebibyte; // largest value of a limit
constexpr std::size_t mostClients = 65536;

/// The default bound for the buffers of all clients together: a small share of the memory, but enough for a few long
/// lines.
std::size_t defaultMemory() { return std::clamp(zorv::availableMemory() / 16, mebibyte, 24 * mebibyte); }

struct Options {
    std::string listen = "127.0.0.1";
    unsigned short port = 4123;
    std::string networkFile;
    std::size_t maxLine = zorv::defaultLineLimit;
    std::size_t maxBacklog = 8 * mebibyte;
    std::size_t maxMemory = defaultMemory();
    std::size_t maxClients = 256;
    zorv::LogLevel logLevel = zorv::LogLevel::warn;
};

/// A limit in the unit that `description` names.
void addLimit(CLI::App& app, std::string const& name, std::size_t& limit, std::size_t lowest, std::size_t highest,
              std::string const& description) {
    app.add_option(name, limit, description)
        ->type_name("N")
        ->capture_default_str()
        ->check(zorv::wholeNumber(lowest, highest));
}

void addTo(CLI::App& app, Options& options) {
    std::map<std::string, zorv::LogLevel> const levels{{"debug", zorv::LogLevel::debug},
                                                       {"info", zorv::LogLevel::info},
                                                       {"warn", zorv::LogLevel::warn},
                                                       {"error", zorv::LogLevel::error}};
    app.set_version_flag("--version", "zwaved " QUILLET_VERSION);
    app.add_option("--listen", options.listen, "Address to listen on")
        ->type_name("ADDRESS")
        ->capture_default_str()
        ->check(CLI::Validator(
            [](std::string const& text) {
                boost::system::error_code error;
                boost::asio::ip::make_address(text, error);
                return error ? "not an IP address: " + text : std::string();
            },
            ""));
    app.add_option("--port", options.port, "Port to listen on, 0 for any free one")
        ->type_name("PORT")
        ->capture_default_str()
        ->check(zorv::wholeNumber(0, 65535));
    app.add_option("--network", options.networkFile, "Description of the simulated network (default: built in)")
        ->type_name("FILE");
    addLimit(app, "--max-line", options.maxLine, 256, mostBytes, "Longest line that is read or answered, in bytes");
    addLimit(app, "--max-backlog", options.maxBacklog, kibibyte, mostBytes,
             "Most that may wait for a client that does not read, in bytes");
    addLimit(app, "--max-memory", options.maxMemory, mebibyte, mostBytes,
             "Most that may wait of and for all clients together, in bytes");
    addLimit(app, "--max-clients", options.maxClients, 1, mostClients, "Most clients at a time");
    app.add_option("--log-level", options.logLevel, "Lowest level that is logged to stderr: debug, info, warn, error")
        ->type_name("LEVEL")
        ->transform(CLI::CheckedTransformer(levels).description(""));
}

zorv::TcpLimits limitsFor(Options const& options, zorv::EventLoop& loop) {
    zorv::TcpLimits limits;
    // A single client cannot take so much that all the others are disconnected.
    limits.line = std::min(options.maxLine, options.maxMemory / 2);
    limits.backlog = std::min(options.maxBacklog, options.maxMemory / 2);
    limits.budget = std::make_shared<zorv::TcpBudget>(loop, options.maxMemory, options.maxClients);
    return limits;
}

void run(Options const& options) {
    auto const network = options.networkFile.empty() ? zorv::builtInNetwork() : zorv::readNetwork(options.networkFile);
    zorv::EventLoop loop;
    zorv::SignalWatch const signals(loop, {SIGINT, SIGTERM}, [&loop](int) { loop.stop(); });
    zorv::TcpListener::Endpoint const local(boost::asio::ip::make_address(options.listen), options.port);
    zorv::Daemon const daemon(loop, local, limitsFor(options, loop), network);
    std::cout << "listening on " << daemon.local() << std::endl;
    loop.run();
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    // The memory of long lines goes back to the system, instead of fragmenting the heap.
    ::mallopt(M_MMAP_THRESHOLD, static_cast<int>(128 * kibibyte));
    Options options;
    CLI::App app("Reference daemon of a simulated Z-Wave network", "zwaved");
    addTo(app, options);
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) { return zorv::endWithUsage(app, error, wrongUsage); }
    zorv::Logger::initialize();
    zorv::Logger::consoleThreshold(options.logLevel);
    try {
        run(options);
    } catch (std::exception const& error) {
        std::cerr << "zwaved: " << zorv::printableLines(error.what()) << '\n';
        return cannotRun;
    }
    return 0;
}
