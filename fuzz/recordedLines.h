// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fuzz/Target.h"

#include "zwave/libserialapi/Bytes.h"

#include <vector>

namespace zorv::fuzz {

/// What one end of the line has said at once.
struct RecordedLine {
    bool isHost = false;
    serialapi::Bytes bytes;
};

/// The recordings of tests/recorded, of each the first lines: short inputs are changed more often than long ones.
std::vector<std::vector<RecordedLine>> recordedLines();

/// The ids of all functions.
Target::Texts functionWords();

} // namespace zorv::fuzz
