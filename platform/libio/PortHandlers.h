// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zorv {

/// Who hears of a port that carries bytes.
struct PortHandlers {
    /// Bytes arrived, at least one, cut as it happened.
    std::function<void(std::vector<std::uint8_t> const& bytes)> received = {};

    /// The port is closed, for whatever reason; called once, and never during a call to the port.
    std::function<void(std::string const& reason)> closed = {};
};

} // namespace zorv
