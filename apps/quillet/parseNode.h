// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/ZwaveAddress.h"

#include <CLI/CLI.hpp>

#include <string>

namespace zorv {

/// Reads a node as users name it: "5", of the network that the daemon runs, or "c0ffee01:5".
///
/// A std::invalid_argument for anything else.
ZwaveAddress parseNode(std::string const& text);

constexpr char const* nodeHelp = "Node id, 1 to 232, or a full address such as c0ffee01:5";

/// Accepts what parseNode() reads.
CLI::Validator isNode();

} // namespace zorv
