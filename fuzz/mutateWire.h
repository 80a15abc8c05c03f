// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fuzz/Target.h"

#include <random>
#include <string>

namespace zorv::fuzz {

/// Changes a message text, at most so many bytes long: its values become other ones of their members' types, or of other
/// types; members and elements come, go and are doubled. What cannot be changed so becomes a new message.
std::string mutateWire(std::string text, std::size_t most, std::mt19937& random);

/// The same for one of several lines.
std::string mutateWireLine(std::string lines, std::size_t most, std::mt19937& random);

/// The same for any JSON text, with these keys and values to choose from.
std::string mutateJson(std::string text, std::size_t most, std::mt19937& random, Target::Texts const& keys,
                       Target::Texts const& values);

/// Serial names, keys, and the texts of enumerations, with the quotes that they have on the wire.
Target::Texts wireWords();

} // namespace zorv::fuzz
