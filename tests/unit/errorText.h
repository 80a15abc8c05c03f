// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libquillet/ZorvError.h"

#include <string>
#include <type_traits>

namespace zorv {

/// The bare text of the `Error` that a call throws; "no error" where it throws none.
template <class Error, class Call> std::string errorText(Call const& call) {
    try {
        call();
    } catch (Error const& error) {
        if constexpr (std::is_base_of_v<ZorvError, Error>) {
            return error.briefWhat();
        } else {
            return error.what();
        }
    }
    return "no error";
}

} // namespace zorv
