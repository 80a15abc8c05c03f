// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/manualLanguage.h"

#include <CLI/CLI.hpp>

#include <cstddef>
#include <iostream>
#include <map>
#include <string>
#include <utility>
#include <vector>

// The manual pages of the programs: written of the same command lines that the programs read.

namespace zorv {

/// What a page has to say that the command line does not.
struct ManualText {
    struct Part {
        std::string title;                                             ///< in capitals
        std::string text = {};                                         ///< a paragraph
        std::vector<std::pair<std::string, std::string>> entries = {}; ///< what is explained, and how
    };

    char section;                                ///< 1, or 8 for what runs as a service
    std::map<std::string, std::string> defaults; ///< by option, where they are not the same on each machine
    std::vector<Part> parts;
    std::vector<std::string> seeAlso; ///< such as "zwaved(8)"
};

namespace manual {

/// The name by which help tells of an argument.
inline std::string argumentName(CLI::Option const& option) { return option.get_name(true); }

inline std::string synopsis(CLI::App const& app) {
    std::string text = " [" + italic("OPTION") + "...]";
    for (auto const* const option : app.get_options()) {
        if (!option->get_positional()) { continue; }
        auto const name = italic(argumentName(*option)) + (option->get_expected_max() > 1 ? "..." : "");
        text += option->get_required() ? ' ' + name : " [" + name + ']';
    }
    if (!app.get_subcommands({}).empty()) { text += ' ' + italic("COMMAND") + " ..."; }
    return text;
}

/// The head of an option: its names and what follows them.
inline std::string head(CLI::Option const& option) {
    std::string names;
    auto const add = [&](std::string const& name) { names += (names.empty() ? "" : ", ") + bold(name); };
    for (auto const& name : option.get_snames()) { add('-' + name); }
    for (auto const& name : option.get_lnames()) { add("--" + name); }
    auto const value = option.get_items_expected_max() > 0 ? option.get_type_name() : std::string();
    return names + (value.empty() ? "" : ' ' + italic(value));
}

inline std::string meaning(CLI::Option const& option, ManualText const& manual) {
    auto text = option.get_description();
    auto const found = manual.defaults.find(option.get_name());
    auto const value = found == manual.defaults.end() ? option.get_default_str() : found->second;
    if (!value.empty()) { text += " (default: " + value + ')'; }
    if (!option.get_envname().empty()) { text += "; $" + option.get_envname() + " counts where it is not given"; }
    return text;
}

inline void options(std::ostream& page, CLI::App const& app, ManualText const& manual) {
    for (auto const* const option : app.get_options()) {
        bool const isRepeated = option == app.get_help_ptr() && app.get_parent() != nullptr;
        if (isRepeated || option->get_group().empty()) { continue; } // or hidden
        bool const isArgument = option->get_positional();
        entry(page, isArgument ? italic(argumentName(*option)) : head(*option), meaning(*option, manual));
    }
}

/// The commands below one, each with all that it takes.
inline void commands(std::ostream& page, CLI::App const& app, ManualText const& manual, std::string const& path = {}) {
    for (auto const* const command : app.get_subcommands({})) {
        auto const name = path + command->get_name();
        page << ".SS " << bold(name) << synopsis(*command) << '\n'
             << paragraph(command->get_description() + '.') << '\n';
        options(page, *command, manual);
        commands(page, *command, manual, name + ' ');
    }
}

/// Writes the page of a program in man's language.
inline void write(std::ostream& page, CLI::App const& app, ManualText const& text) {
    auto const& name = app.get_name();
    begin(page, name, text.section, app.get_description());
    page << ".SH SYNOPSIS\n" << bold(name) << synopsis(app) << "\n.SH OPTIONS\n";
    options(page, app, text);
    if (!app.get_subcommands({}).empty()) {
        page << ".SH COMMANDS\n";
        commands(page, app, text);
    }
    for (auto const& part : text.parts) {
        page << ".SH " << part.title << '\n';
        if (!part.text.empty()) { page << paragraph(part.text) << '\n'; }
        for (auto const& [what, how] : part.entries) { entry(page, bold(what), how); }
    }
    end(page, text.seeAlso);
}

} // namespace manual

/// Adds the option that writes the page; help does not show it, since only the build asks for it.
inline void addManual(CLI::App& app, ManualText text) {
    app.add_flag_callback(
           "--manual",
           [&app, text = std::move(text)] {
               manual::write(std::cout, app, text);
               throw CLI::Success();
           },
           "Write the manual page")
        ->group("");
}

} // namespace zorv
