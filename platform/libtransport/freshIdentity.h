// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <boost/uuid/uuid.hpp>

namespace zorv {

/// A new random identity (a version 4 UUID).
///
/// Safe to call from any thread, and in a process that was forked: it draws other identities than its parent.
ZORV_EXPORT boost::uuids::uuid freshIdentity();

} // namespace zorv
