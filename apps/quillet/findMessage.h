// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace zorv {

struct TypeDescriptor;

/// The message of the catalogue with that name, "PingMsg" or "zorv::PingMsg"; a std::invalid_argument where there is
/// none.
TypeDescriptor const& findMessage(std::string const& name);

/// The complaint about a message name on the command line; empty if the name is good.
std::string complaintAboutMessage(std::string const& name);

} // namespace zorv
