// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/scenario/Process.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/testPaths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace scenario {

/// What lies between a daemon and its simulated module.
enum class Stream { builtIn, pseudoTerminal };

/// The simulated module as a program.
class SimProcess : public Process {
public:
    explicit SimProcess(std::vector<std::string> const& arguments = {}) : Process(command(arguments)) {}

    static std::vector<std::string> command(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), zorv::programPath("zwavesim"));
        return arguments;
    }

    /// The device that it announces.
    std::string device() {
        auto const line = readLine();
        if (line.rfind("device: /dev/pts/", 0) != 0) { throw std::runtime_error("no device: " + line); }
        return line.substr(line.find('/'));
    }
};

/// The module of a daemon, where that is a program of its own.
class ModuleOnStream {
protected:
    /// The arguments are those of a daemon with a simulated module.
    ModuleOnStream(Stream stream, std::vector<std::string> arguments) : arguments_(std::move(arguments)) {
        if (stream == Stream::builtIn) { return; }
        std::vector<std::string> ofModule;
        auto const network = std::find(arguments_.begin(), arguments_.end(), "--network");
        if (network != arguments_.end()) {
            ofModule.assign(network, network + 2);
            arguments_.erase(network, network + 2);
        }
        module_ = std::make_unique<SimProcess>(ofModule);
        arguments_.insert(arguments_.end(), {"--device", module_->device(), "--state", state_.path()});
    }

    std::vector<std::string> const& arguments() const noexcept { return arguments_; }

private:
    zorv::TemporaryDirectory state_;
    std::unique_ptr<SimProcess> module_;
    std::vector<std::string> arguments_;
};

/// A daemon on a free port; its module is in it, or behind a pseudo terminal.
class StreamDaemon : private ModuleOnStream, public DaemonProcess {
public:
    explicit StreamDaemon(Stream stream, std::vector<std::string> const& arguments = {})
        : ModuleOnStream(stream, arguments), DaemonProcess(ModuleOnStream::arguments()) {}
};

/// For tests that run on each kind of stream.
inline auto streams() { return testing::Values(Stream::builtIn, Stream::pseudoTerminal); }

inline std::string nameOf(testing::TestParamInfo<Stream> const& info) {
    return info.param == Stream::builtIn ? "BuiltIn" : "PseudoTerminal";
}

} // namespace scenario
