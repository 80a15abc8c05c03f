// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/functions/FrameDissector.h"

#include <string>

namespace zorv {

// Frames of the serial interface as people read them.

char const* senderText(serialapi::Side sender);
char const* formText(serialapi::FormKind kind);

/// The value of a decoded parameter; bytes in hex.
std::string valueText(serialapi::FieldValue const& value);

/// All that the frame says: its members, and under a name of their own the bytes that are none.
serialapi::FieldValues membersOf(serialapi::Dissection const& dissection);

/// As "name=value", with blanks between.
std::string membersText(serialapi::FieldValues const& members);

std::string hexText(serialapi::Bytes const& bytes);

} // namespace zorv
