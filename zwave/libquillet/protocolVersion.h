// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace zorv {

/// The version of the protocol that this catalogue speaks, as VersionMsg carries it.
constexpr char const* protocolVersion = "1.0";

/// Whether a peer of that version is understood: its major number has to be ours, its minor number does not matter.
inline bool understands(std::string const& version) {
    std::string const ours(protocolVersion);
    return version.substr(0, version.find('.')) == ours.substr(0, ours.find('.'));
}

} // namespace zorv
