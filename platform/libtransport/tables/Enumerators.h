// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/EnumTexts.h"
#include "platform/libtransport/tables/identifiers.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace zorv {

/// The enumerators among some numbers, with their identifiers as texts.
///
/// `Numbers` has a `size` and gives the number `at` a place; they ascend. The compiler spells all of them in one
/// function's name, which costs it less than a function for each.
template <class Enum, class Numbers> class Enumerators {
    struct Extent {
        std::size_t rows = 0;
        std::size_t characters = 0;
    };

    template <int... places> static constexpr std::string_view spell(std::integer_sequence<int, places...>) {
        return identifiers::spellValues<static_cast<Enum>(Numbers::at(places))...>();
    }

    /// Calls `visit` with the number and the identifier of each enumerator.
    template <class Visitor> static constexpr void forEach(Visitor&& visit) {
        char const* argument = identifiers::argumentsOf(spell(std::make_integer_sequence<int, Numbers::size>()));
        for (int place = 0; place < Numbers::size; ++place) {
            char const* const end = identifiers::endOfArgument(argument);
            auto const identifier = identifiers::lastIdentifier(argument, end);
            if (!identifier.empty()) { visit(Numbers::at(place), identifier); }
            argument = end + 2; // past the comma and the blank
        }
    }

    static constexpr Extent measure() {
        Extent extent;
        forEach([&extent](int, std::string_view identifier) {
            ++extent.rows;
            extent.characters += identifier.size();
        });
        return extent;
    }

    static constexpr auto copyIdentifiers() {
        constexpr auto characters = measure().characters;
        identifiers::Text<characters> text;
        forEach([&text](int, std::string_view identifier) { text.append(identifier); });
        return text;
    }

    static constexpr auto identifiers_ = copyIdentifiers();

    static constexpr auto makeRows() {
        constexpr auto count = measure().rows;
        std::array<EnumRow, count> made = {};
        std::size_t row = 0;
        std::size_t offset = 0;
        forEach([&](int number, std::string_view identifier) {
            made[row++] = {number, identifiers_.view().substr(offset, identifier.size())};
            offset += identifier.size();
        });
        return made;
    }

public:
    static constexpr auto rows = makeRows();
};

} // namespace zorv
