// SPDX-License-Identifier: Apache-2.0
#include "apps/commandLine.h"
#include "apps/logLevelOption.h"
#include "apps/manualPage.h"
#include "apps/runService.h"
#include "apps/zwavesim/ModuleDevice.h"

#include "platform/libio/EventLoop.h"
#include "zwave/libmodulesim/readNetwork.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>

namespace {

struct Options {
    std::string networkFile;
    std::string link;
    std::optional<std::uint32_t> seed;
    zorv::LogLevel logLevel = zorv::LogLevel::warn;
};

/// What the manual page says beside the command line.
zorv::ManualText manualText() {
    return {'1',
            {},
            {{"DESCRIPTION", "Plays a controller module and its network on a pseudo terminal, whose path is the first "
                             "line of standard output. "
                             "A daemon opens it as it would open a serial port."},
             {"EXIT STATUS", {}, {{"0", "Ended by a signal."}, {"1", "It cannot run."}, {"2", "Wrong usage."}}}},
            {"quillet(1)", "zwaved(8)"}};
}

void addTo(CLI::App& app, Options& options) {
    zorv::addManual(app, manualText());
    app.set_version_flag("--version", "zwavesim " QUILLET_VERSION);
    app.add_option("--network", options.networkFile, "Description of the module and its network (default: built in)")
        ->type_name("FILE");
    app.add_option("--link", options.link, "Symbolic link to the device, made at the start and removed at the end")
        ->type_name("PATH");
    app.add_option("--seed", options.seed, "Of all that is random, instead of the seed that the description has")
        ->type_name("N")
        ->check(zorv::wholeNumber<std::uint32_t>(0, 0xFFFFFFFFU));
    zorv::addLogLevel(app, options.logLevel);
}

void run(Options const& options) {
    auto network = options.networkFile.empty() ? zorv::modulesim::builtInNetwork()
                                               : zorv::modulesim::readNetwork(options.networkFile);
    network.seed = options.seed.value_or(network.seed);
    zorv::EventLoop loop;
    zorv::SignalWatch const signals(loop, {SIGINT, SIGTERM}, [&loop](int) { loop.stop(); });
    zorv::ModuleDevice const device(loop, std::move(network), options.link);
    std::cout << "device: " << device.path() << std::endl;
    loop.run();
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Simulated Z-Wave controller module on a pseudo terminal", "zwavesim");
    addTo(app, options);
    return zorv::runService(app, argc, argv, options, run);
}
