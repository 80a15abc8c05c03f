// SPDX-License-Identifier: Apache-2.0
#include "apps/commandLine.h"
#include "apps/quillet/Command.h"
#include "apps/quillet/ExitCode.h"
#include "apps/quillet/Output.h"
#include "apps/quillet/Seconds.h"

#include "platform/libzorvlogger/printable.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <exception>
#include <iostream>
#include <map>
#include <memory>
#include <string>

namespace {

using zorv::ExitCode;

struct Options {
    std::string host = "127.0.0.1";
    unsigned short port = 4123;
    double timeout = 10;
    bool json = false;
};

void addTo(CLI::App& app, Options& options) {
    app.set_version_flag("--version", "quillet " QUILLET_VERSION);
    app.add_option("--host", options.host, "Name or address of the daemon's machine")
        ->type_name("HOST")
        ->capture_default_str();
    app.add_option("--port", options.port, "The daemon's port")
        ->type_name("PORT")
        ->capture_default_str()
        ->check(zorv::wholeNumber(1, 65535));
    app.add_option("--timeout", options.timeout, "Seconds to wait for the connection and for each answer")
        ->type_name("S")
        ->capture_default_str()
        ->check(zorv::isSeconds(0.001));
    app.add_flag("--json", options.json, "Show answers as JSON, one line each");
}

/// On standard error; the text may quote a file or the daemon.
void complain(std::exception const& error) { std::cerr << "quillet: " << zorv::printableLines(error.what()) << '\n'; }

ExitCode run(Options const& options, zorv::Command& command) {
    zorv::Output output(std::cout, options.json);
    return command.run({options.host, options.port, zorv::toMilliseconds(options.timeout)}, output);
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN); // the client ends quietly when the reader closes the output
    Options options;
    CLI::App app("Command-line client of a Z-Wave controller daemon", "quillet");
    addTo(app, options);
    app.require_subcommand(1);
    app.fallthrough();
    auto const commands = zorv::makeCommands();
    std::map<CLI::App const*, zorv::Command*> byApp;
    for (auto const& command : commands) { byApp.emplace(command->addTo(app), command.get()); }
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) { return zorv::endWithUsage(app, error, static_cast<int>(ExitCode::usage)); }
    auto code = ExitCode::ok;
    try {
        code = run(options, *byApp.at(app.get_subcommands().front()));
    } catch (zorv::ExitError const& error) {
        if (*error.what() != '\0') { complain(error); }
        code = error.code();
    } catch (std::exception const& error) { // the daemon sent something that cannot be shown
        complain(error);
        code = ExitCode::protocolError;
    }
    return static_cast<int>(code);
}
