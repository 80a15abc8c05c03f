// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/CommandLine.h"

#include "apps/commandLine.h"
#include "apps/quillet/Seconds.h"
#include "apps/quillet/manualText.h"

#include "platform/libzorvlogger/Logger.h"
#include "platform/libzorvlogger/printable.h"

#include <unistd.h>

#include <algorithm>
#include <exception>
#include <iostream>
#include <utility>

namespace zorv {

namespace {

/// On standard error; the text may quote a file or the daemon.
void complain(std::exception const& error) { std::cerr << "quillet: " << printableLines(error.what()) << std::endl; }

CLI::App const* findCommand(CLI::App const& level, std::string const& name) {
    for (auto const* const each : level.get_subcommands({})) {
        if (each->check_name(name)) { return each; }
    }
    return nullptr;
}

bool isOption(std::string const& word) { return word.size() > 1 && word.front() == '-'; }

} // namespace

DaemonAddress ClientOptions::daemon() const { return {place, toMilliseconds(timeout), isTimeoutGiven, loop}; }

CommandLine::CommandLine(ClientOptions& options)
    : options_(options),
      app_("Command-line client of a Z-Wave controller daemon", "quillet"),
      commands_(makeCommands()) {
    addOptions();
    app_.require_subcommand(0, 1);
    app_.fallthrough();
    for (auto const& command : commands_) { byApp_.emplace(command->addTo(app_), command.get()); }
}

void CommandLine::addOptions() {
    addManual(app_, clientManual());
    app_.set_version_flag("--version", "quillet " QUILLET_VERSION);
    app_.add_option("--host", options_.place.host, "Name or address of the daemon's machine")
        ->type_name("HOST")
        ->envname("QUILLET_HOST")
        ->capture_default_str();
    app_.add_option("--port", options_.place.port, "The daemon's port")
        ->type_name("PORT")
        ->envname("QUILLET_PORT")
        ->capture_default_str()
        ->check(wholeNumber(1, 65535));
    app_.add_option("--socket", options_.place.socket, "The daemon's Unix-domain socket, instead of host and port")
        ->type_name("PATH")
        ->envname("QUILLET_SOCKET");
    app_.add_option("--timeout", options_.timeout, "Seconds to wait for the connection and for each answer")
        ->type_name("S")
        ->capture_default_str()
        ->check(isSeconds(0.001));
    std::map<std::string, OutputFormat> const formats{
        {"table", OutputFormat::table}, {"wide", OutputFormat::wide}, {"json", OutputFormat::json}};
    auto* const output =
        app_.add_option("--output", options_.style.format,
                        "How answers are shown: table (fitted to the terminal), wide (never cut), json (one line each)")
            ->type_name("FORM")
            ->transform(CLI::Validator(
                [formats](std::string& text) {
                    std::vector<std::string> known;
                    known.reserve(formats.size());
                    for (auto const& each : formats) { known.push_back(each.first); }
                    auto const found = formats.find(text);
                    if (found == formats.end()) { return "unknown form \"" + text + '"' + suggest(text, known); }
                    text = std::to_string(static_cast<int>(found->second));
                    return std::string();
                },
                ""));
    app_.add_flag_callback(
            "--json", [this] { options_.style.format = OutputFormat::json; }, "The same as --output json")
        ->excludes(output);
    app_.add_flag_callback(
        "--no-header", [this] { options_.style.hasTitles = false; }, "Show no titles above the columns");
    app_.add_flag("-v,--verbose", options_.verbosity, "Log to standard error; twice for all that is sent and received");
}

ExitCode CommandLine::run(std::vector<std::string> words) {
    std::reverse(words.begin(), words.end()); // as the parser takes them
    try {
        app_.parse(words);
    } catch (CLI::ParseError const& error) {
        hasSaidAll_ = error.get_exit_code() == 0;
        return static_cast<ExitCode>(endWithUsage(app_, error, static_cast<int>(ExitCode::usage)));
    }
    options_.isTimeoutGiven = options_.isTimeoutGiven || app_["--timeout"]->count() != 0;
    if (options_.verbosity > 0) {
        Logger::consoleThreshold(options_.verbosity == 1 ? LogLevel::info : LogLevel::debug);
    }
    if (!hasCommand()) { return ExitCode::ok; }
    try {
        return runCommand();
    } catch (ExitError const& error) {
        if (*error.what() != '\0') { complain(error); }
        return error.code();
    } catch (std::exception const& error) { // the daemon sent something that cannot be shown
        complain(error);
        return ExitCode::protocolError;
    }
}

ExitCode CommandLine::runCommand() {
    Output output(std::cout, Terminal(STDOUT_FILENO), options_.style);
    return byApp_.at(app_.get_subcommands().front())->run(options_.daemon(), output);
}

std::vector<std::string> CommandLine::completions(std::vector<std::string> const& words,
                                                  std::vector<std::string> const& nodes) const {
    CLI::App const* level = &app_;
    Command const* command = nullptr;
    TypedWord typed;
    CLI::Option const* valueOf = nullptr; // of the option before
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        auto const& word = words[i];
        if (std::exchange(valueOf, nullptr) != nullptr) { continue; }
        if (isOption(word)) {
            for (auto const* at : {level, &app_}) {
                if (valueOf == nullptr) { valueOf = at->get_option_no_throw(word); }
            }
            if (valueOf != nullptr && valueOf->get_items_expected_max() == 0) { valueOf = nullptr; }
            continue;
        }
        auto const* const next = findCommand(*level, word);
        if (next == nullptr) {
            typed.before.push_back(word);
            continue;
        }
        if (level == &app_) { command = byApp_.at(next); }
        level = next;
    }
    typed.text = words.empty() ? "" : words.back();
    typed.nodes = nodes;
    std::vector<std::string> all;
    if (valueOf == nullptr && isOption(typed.text + ' ')) {
        for (auto const* at : {level, &app_}) {
            for (auto const* const option : at->get_options()) {
                if (option->get_group().empty()) { continue; } // hidden
                for (auto const& name : option->get_lnames()) { all.push_back("--" + name); }
            }
        }
    } else if (valueOf == nullptr && !level->get_subcommands({}).empty()) {
        for (auto const* const each : level->get_subcommands({})) { all.push_back(each->get_name()); }
    } else if (command != nullptr) {
        if (valueOf == nullptr) {
            auto const positionals =
                level->get_options([](CLI::Option const* option) { return option->get_positional(); });
            if (positionals.empty()) { return {}; }
            valueOf = positionals[std::min(typed.before.size(), positionals.size() - 1)];
        }
        typed.argument = valueOf->get_positional() ? valueOf->get_name(true) : valueOf->get_name();
        all = command->completions(typed);
    }
    all.erase(
        std::remove_if(all.begin(), all.end(),
                       [&typed](auto const& word) { return word.compare(0, typed.text.size(), typed.text) != 0; }),
        all.end());
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

} // namespace zorv
