// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libquillet/ZorvError.h"

#include <boost/shared_ptr.hpp>

namespace zorv {

/// The object that the pointer points to; a NullPointerError with the text `complaint` if it is empty.
template <class T> T& requireNonNull(boost::shared_ptr<T> const& pointer, char const* complaint) {
    if (!pointer) { throw NullPointerError(complaint); }
    return *pointer;
}

} // namespace zorv
