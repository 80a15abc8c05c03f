// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <array>
#include <cstddef>
#include <iosfwd>
#include <string>

namespace zorv {

/// The call stack of the place where the object was made.
///
/// Making one only stores return addresses, so that an error which nobody prints stays cheap; names are looked up
/// when it is printed. Copying never fails.
class ZORV_EXPORT StackTrace {
public:
    StackTrace() noexcept;

    /// Writes one line for each frame, innermost first: its number, its function where known, and its address.
    void print(std::ostream& os) const;

    /// Logs `text`, and the trace below it, as one event at WARN.
    void log(std::string const& text) const;

    /// The readable form of a run-time type name or a symbol; a text that is not a mangled name comes back unchanged.
    static std::string demangle(char const* name);

private:
    static constexpr std::size_t maxDepth = 32;

    std::array<void const*, maxDepth + 1> frames_{}; // and the empty one that ends a dump
    std::size_t depth_ = 0;
};

} // namespace zorv
