// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/EnumTable.h"
#include "platform/libtransport/tables/FlagTexts.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

// The flags and texts of a set of flags, derived from its declaration:
//
//     namespace DaemonDetail {
//     enum Enum : int { noDetail = 0, moduleNotPresent = 1, moduleCommFailure = 2 };
//     ZORV_ENUM_DECLARE(QUILLET_EXPORT)
//     } // namespace DaemonDetail
//
//     namespace DaemonDetail {
//     ZORV_ENUM_DEFINE(flagTable<Enum>())
//     } // namespace DaemonDetail
//
// A flag is an enumerator of one bit, its text is its identifier. The enumerator of 0 gives the empty set its text, or
// `emptySet` does where there is none.

namespace zorv {

namespace enums {

struct Zero {
    static constexpr int size = 1;
    static constexpr int at(int) { return 0; }
};

/// The bits of a positive int.
struct Bits {
    static constexpr int size = 31;
    static constexpr int at(int place) { return 1 << place; }
};

} // namespace enums

/// One text for each flag.
template <class Enum> class FlagTable {
    static constexpr auto const& declared = Enumerators<Enum, enums::Bits>::rows;

public:
    constexpr FlagTable() {
        for (auto const& row : Enumerators<Enum, enums::Zero>::rows) { emptyText_ = row.text; }
    }

    constexpr FlagTable emptySet(std::string_view text) const {
        auto table = *this;
        table.emptyText_ = text;
        return table;
    }

    /// The table of a set that has another name in the errors of reading.
    constexpr FlagTable namedOnReading(char const* name) const {
        auto table = *this;
        table.names_.onReading = name;
        return table;
    }

    /// The table of a set in which the bits of `mask` hold one value of another enumeration.
    template <class Table> constexpr FlagTable field(unsigned int mask, Table const& values) const {
        auto table = *this;
        table.field_ = {mask, values.texts()};
        return table;
    }

    constexpr bool isOrderly() const {
        for (auto const& flag : flags_) {
            if (flag.text == emptyText_ || (static_cast<unsigned int>(flag.value) & field_.mask) != 0) { return false; }
        }
        return !emptyText_.empty() && enums::isPlain(emptyText_) && enums::areOrderly(flags_);
    }

    /// The texts, for a table that stays where it is.
    constexpr FlagTexts texts() const { return {names_, emptyText_, {flags_.data(), flags_.size()}, field_}; }

private:
    FlagTexts::Names names_ = {enums::name<Enum>.data(), enums::name<Enum>.data()};
    std::string_view emptyText_;
    std::decay_t<decltype(declared)> flags_ = declared;
    FlagTexts::Field field_ = {0, {"", {}, {}}};
};

template <class Enum> constexpr FlagTable<Enum> flagTable() { return {}; }

} // namespace zorv
