// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/Bytes.h"

#include <functional>
#include <memory>
#include <string>

namespace zorv::daemon {

/// An open way to a module: bytes there and back. It is closed when the object goes, and no handler is called after that.
class ModulePort {
public:
    /// Both are called by the event loop, never during a call of the port.
    struct Handlers {
        std::function<void(serialapi::Bytes const& bytes)> received;
        std::function<void(std::string const& reason)> lost; ///< once; nothing is received after it
    };

    virtual ~ModulePort() = default;
    virtual void write(serialapi::Bytes const& bytes) = 0;
};

/// Opens a port; std::runtime_error where that cannot be done now.
using OpenPort = std::function<std::unique_ptr<ModulePort>(ModulePort::Handlers handlers)>;

} // namespace zorv::daemon
