// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libquillet/Export.h"

#include <string>

namespace zorv {

struct TypeDescriptor;

/// A type in a few words, such as "unsigned byte", "ZResult" or "list of zorv::Blob or null".
QUILLET_EXPORT std::string typeText(TypeDescriptor const& type);

} // namespace zorv
