// SPDX-License-Identifier: Apache-2.0
#include "apps/commandLine.h"
#include "apps/defaultLineLimit.h"
#include "apps/logLevelOption.h"
#include "apps/manualPage.h"
#include "apps/runService.h"
#include "apps/zwaved/Daemon.h"
#include "apps/zwaved/ServiceManager.h"
#include "apps/zwaved/ports.h"
#include "apps/zwaved/stateFolder.h"

#include "platform/libio/SerialPort.h"
#include "platform/libio/TcpBudget.h"
#include "platform/libio/TcpListener.h"
#include "platform/libio/UnixListener.h"
#include "platform/libio/availableMemory.h"
#include "zwave/libmodulesim/readNetwork.h"

#include <CLI/CLI.hpp>

#include <boost/asio/ip/tcp.hpp>
#include <boost/lexical_cast.hpp>

#include <malloc.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <iostream>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kibibyte = 1024;
constexpr std::size_t mebibyte = 1024 * kibibyte;
constexpr std::size_t mostBytes = 1024 * mebibyte; // largest value of a limit
constexpr std::size_t mostClients = 65536;

/// The default bound for the buffers of all clients together: a small share of the memory, but enough for a few long
/// lines.
std::size_t defaultMemory() { return std::clamp(zorv::availableMemory() / 16, mebibyte, 24 * mebibyte); }

struct Options {
    std::vector<std::string> listen{"127.0.0.1"};
    unsigned short port = 4123;
    std::string device;
    unsigned int baud = zorv::SerialPort::usualBaud;
    std::string networkFile;
    std::string stateFolder;
    std::string firmwareFolder;
    std::size_t maxLine = zorv::defaultLineLimit;
    std::size_t maxBacklog = 8 * mebibyte;
    std::size_t maxMemory = defaultMemory();
    std::size_t maxClients = 256;
    zorv::LogLevel logLevel = zorv::LogLevel::warn;
};

constexpr std::string_view unixPrefix = "unix:";

bool isUnixSocket(std::string const& address) { return address.compare(0, unixPrefix.size(), unixPrefix) == 0; }

/// A limit in the unit that `description` names.
void addLimit(CLI::App& app, std::string const& name, std::size_t& limit, std::size_t lowest, std::size_t highest,
              std::string const& description) {
    app.add_option(name, limit, description)
        ->type_name("N")
        ->capture_default_str()
        ->check(zorv::wholeNumber(lowest, highest));
}

/// What the manual page says beside the command line.
zorv::ManualText manualText() {
    return {'8',
            {{"--max-memory", "a sixteenth of the memory that the process may use, 1 to 24 MiB"}},
            {{"DESCRIPTION",
              "Drives a Z-Wave controller module on a serial port, or a simulated one, and serves it to its clients: "
              "agents "
              "and the command-line client. What it cannot do with its module yet waits until the module is there."},
             {"SIGNALS",
              {},
              {{"SIGINT, SIGTERM",
                "End the daemon in order: the module is taken out of every mode, and what is being written to "
                "its memory is written to its end. A second one ends the daemon at once."}}},
             {"FILES",
              {},
              {{"/etc/default/zwaved", "Options of the service, as ZWAVED_OPTIONS."},
               {"/run/zwaved/socket", "The service's socket, for the group zwaved."},
               {"zwaved.sqlite", "In the state folder: the nodes and what was learnt of them."}}},
             {"EXIT STATUS",
              {},
              {{"0", "Ended by a signal or by a client."}, {"1", "It cannot run."}, {"2", "Wrong usage."}}}},
            {"quillet(1)", "zwavesim(1)", "libquillet(7)"}};
}

void addTo(CLI::App& app, Options& options) {
    zorv::addManual(app, manualText());
    app.set_version_flag("--version", "zwaved " QUILLET_VERSION);
    app.add_option("--listen", options.listen, "Address to listen on, or unix:PATH; may be given several times")
        ->type_name("ADDRESS")
        ->default_str(options.listen.front())
        ->allow_extra_args(false)
        ->check(CLI::Validator(
            [](std::string const& text) {
                boost::system::error_code error;
                if (!isUnixSocket(text)) { boost::asio::ip::make_address(text, error); }
                return error ? "not an IP address: " + text : std::string();
            },
            ""));
    app.add_option("--port", options.port, "Port to listen on, 0 for any free one")
        ->type_name("PORT")
        ->capture_default_str()
        ->check(zorv::wholeNumber(0, 65535));
    auto* const device =
        app.add_option("--device", options.device, "Serial port of the module (default: a simulated module)")
            ->type_name("PATH");
    app.add_option("--baud", options.baud, "Speed of the serial port")
        ->type_name("N")
        ->capture_default_str()
        ->check(zorv::wholeNumber(1200, 4000000))
        ->needs(device);
    app.add_option("--network", options.networkFile, "Description of the simulated network (default: built in)")
        ->type_name("FILE")
        ->excludes(device);
    app.add_option("--state", options.stateFolder,
                   "Folder of what outlives the daemon (default: with --device, $STATE_DIRECTORY, "
                   "$XDG_STATE_HOME/zwaved or ~/.local/state/zwaved; else none)")
        ->type_name("FOLDER");
    app.add_option("--firmware-dir", options.firmwareFolder,
                   "Folder of firmware for the module, a file for each country code, such as EU.bin")
        ->type_name("FOLDER");
    addLimit(app, "--max-line", options.maxLine, 256, mostBytes, "Longest line that is read or answered, in bytes");
    addLimit(app, "--max-backlog", options.maxBacklog, kibibyte, mostBytes,
             "Most that may wait for a client that does not read, in bytes");
    addLimit(app, "--max-memory", options.maxMemory, mebibyte, mostBytes,
             "Most that may wait of and for all clients together, in bytes");
    addLimit(app, "--max-clients", options.maxClients, 1, mostClients, "Most clients at a time");
    zorv::addLogLevel(app, options.logLevel);
}

zorv::TcpLimits limitsFor(Options const& options, zorv::EventLoop& loop) {
    zorv::TcpLimits limits;
    // A single client cannot take so much that all the others are disconnected.
    limits.line = std::min(options.maxLine, options.maxMemory / 2);
    limits.backlog = std::min(options.maxBacklog, options.maxMemory / 2);
    limits.budget = std::make_shared<zorv::TcpBudget>(loop, options.maxMemory, options.maxClients);
    return limits;
}

/// Whatever clients can connect to.
class Listeners {
public:
    Listeners(zorv::EventLoop& loop, Options const& options, zorv::TcpListener::Accepted const& accepted) {
        auto const limits = limitsFor(options, loop);
        for (auto const& address : options.listen) {
            if (isUnixSocket(address)) {
                unix_.emplace_back(loop, address.substr(unixPrefix.size()), limits, accepted);
                addresses_.push_back(address);
            } else {
                zorv::TcpListener::Endpoint const local(boost::asio::ip::make_address(address), options.port);
                auto const& listener = tcp_.emplace_back(loop, local, limits, accepted);
                addresses_.push_back(boost::lexical_cast<std::string>(listener.local()));
            }
        }
    }

    std::vector<std::string> const& addresses() const noexcept { return addresses_; }

private:
    std::list<zorv::TcpListener> tcp_;
    std::list<zorv::UnixListener> unix_;
    std::vector<std::string> addresses_;
};

zorv::daemon::OpenPort portFor(Options const& options, zorv::EventLoop& loop) {
    if (!options.device.empty()) { return zorv::daemon::serialPort(loop, options.device, options.baud); }
    return zorv::daemon::simulatedPort(loop, options.networkFile.empty()
                                                 ? zorv::modulesim::builtInNetwork()
                                                 : zorv::modulesim::readNetwork(options.networkFile));
}

void run(Options const& options) {
    zorv::EventLoop loop;
    bool const hasDevice = !options.device.empty();
    auto const state = !options.stateFolder.empty() || !hasDevice ? options.stateFolder : zorv::daemon::stateFolder();
    zorv::daemon::ServiceManager service(loop);
    zorv::daemon::Daemon daemon(loop, portFor(options, loop), state, options.firmwareFolder, [&loop] { loop.stop(); });
    zorv::SignalWatch const signals(loop, {SIGINT, SIGTERM}, [&daemon](int) { daemon.quit(); });
    Listeners const listeners(loop, options,
                              [&daemon](zorv::TcpConnection connection) { daemon.welcome(std::move(connection)); });
    daemon.systemStatus([&service](zorv::SystemStatus::Enum status) { service.tell(status); });
    daemon.open();
    for (auto const& address : listeners.addresses()) { std::cout << "listening on " << address << std::endl; }
    loop.post([&service] { service.ready(); });
    loop.run();
}

} // namespace

int main(int argc, char** argv) {
    // The memory of long lines goes back to the system, instead of fragmenting the heap.
    ::mallopt(M_MMAP_THRESHOLD, static_cast<int>(128 * kibibyte));
    Options options;
    CLI::App app("Serves the messages of its clients by a Z-Wave controller module", "zwaved");
    addTo(app, options);
    return zorv::runService(app, argc, argv, options, run);
}
