#include "apps/zwaved/Daemon.h"
#include "apps/zwaved/readNetwork.h"

#include "platform/libzorvlogger/Logger.h"
#include "platform/libzorvlogger/printable.h"

#include <CLI/CLI.hpp>

#include <boost/asio/ip/tcp.hpp>

#include <csignal>
#include <cstddef>
#include <iostream>
#include <map>
#include <string>

namespace {

constexpr int cannotRun = 1;
constexpr int wrongUsage = 2;

struct Options {
    std::string listen = "127.0.0.1";
    unsigned short port = 4123;
    std::string networkFile;
    zorv::TcpLimits limits;
    zorv::LogLevel logLevel = zorv::LogLevel::warn;
};

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
        ->capture_default_str();
    app.add_option("--network", options.networkFile, "Description of the simulated network (default: built in)")
        ->type_name("FILE");
    app.add_option("--max-line", options.limits.line, "Longest line that is read, in bytes")
        ->type_name("BYTES")
        ->capture_default_str();
    app.add_option("--max-backlog", options.limits.backlog,
                   "Most that may wait for a client that does not read, in bytes")
        ->type_name("BYTES")
        ->capture_default_str();
    app.add_option("--log-level", options.logLevel, "Lowest level that is logged to stderr: debug, info, warn, error")
        ->type_name("LEVEL")
        ->transform(CLI::CheckedTransformer(levels).description(""));
}

void run(Options const& options) {
    auto const network = options.networkFile.empty() ? zorv::builtInNetwork() : zorv::readNetwork(options.networkFile);
    zorv::EventLoop loop;
    zorv::SignalWatch const signals(loop, {SIGINT, SIGTERM}, [&loop](int) { loop.stop(); });
    zorv::TcpListener::Endpoint const local(boost::asio::ip::make_address(options.listen), options.port);
    zorv::Daemon const daemon(loop, local, options.limits, network);
    std::cout << "listening on " << daemon.local() << std::endl;
    loop.run();
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    Options options;
    CLI::App app("Reference daemon of a simulated Z-Wave network", "zwaved");
    addTo(app, options);
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) { return app.exit(error) == 0 ? 0 : wrongUsage; }
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
