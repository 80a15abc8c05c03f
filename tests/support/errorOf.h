// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/readSerializable.h"
#include "zwave/libquillet/ZorvError.h"

#include <boost/core/demangle.hpp>

#include <exception>
#include <string>
#include <typeinfo>

namespace zorv {

/// The class of an error and its bare text, such as "NullPointerError: msg is null".
inline std::string describe(std::exception const& error) {
    auto name = boost::core::demangle(typeid(error).name());
    if (name.rfind("zorv::", 0) == 0) { name.erase(0, 6); }
    // The full text of a ZorvError holds a stack trace.
    auto const* const own = dynamic_cast<ZorvError const*>(&error);
    return name + ": " + (own != nullptr ? own->briefWhat() : error.what());
}

/// The error that a call throws; "no error" where it throws none.
template <class Call> std::string errorOf(Call const& call) {
    try {
        call();
    } catch (std::exception const& error) { return describe(error); }
    return "no error";
}

/// The error of reading an object from a text.
inline std::string errorOfReading(std::string const& text) {
    return errorOf([&] { readSerializable(text); });
}

} // namespace zorv
