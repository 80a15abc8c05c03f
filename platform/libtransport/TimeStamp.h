// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace zorv {

class Serializer;
struct TypeDescriptor;

/// A point in time, in milliseconds UTC; the default is the start of 1970, which stands for "not set".
///
/// Its text has the form 2026-01-31T12:34:56.789Z, for the years 1400 to 9999.
class ZORV_EXPORT TimeStamp {
public:
    static constexpr std::size_t textSize = 24;

    TimeStamp() noexcept = default;
    explicit TimeStamp(std::int64_t millisecondsSince1970) noexcept : milliseconds_(millisecondsSince1970) {}

    static TimeStamp now() noexcept;

    /// Reads the text that print() writes; anything else is a std::invalid_argument.
    static TimeStamp parse(std::string const& text);

    /// As parse(), without an error: false, and `time` as it was, where the text is another one.
    static bool tryParse(std::string_view text, TimeStamp& time);

    std::int64_t milliseconds() const noexcept { return milliseconds_; }

    void print(std::ostream& os) const;

    /// Puts the text of print() where there is room for it, and returns its end; errors as of toString().
    char* put(char* at) const;

    friend bool operator==(TimeStamp a, TimeStamp b) noexcept { return a.milliseconds_ == b.milliseconds_; }
    friend bool operator!=(TimeStamp a, TimeStamp b) noexcept { return !(a == b); }
    friend bool operator<(TimeStamp a, TimeStamp b) noexcept { return a.milliseconds_ < b.milliseconds_; }

private:
    std::int64_t milliseconds_ = 0;
};

/// The text that print() writes; std::out_of_range where the time lies outside the years 1400 to 9999.
ZORV_EXPORT std::string toString(TimeStamp time);

} // namespace zorv
