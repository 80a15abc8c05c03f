// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/WireTexts.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <rapidcheck/gtest.h>

#include <cstdint>
#include <string>

// Properties that hold for whatever is generated. RapidCheck makes cases from a seed, and where one fails, smaller and
// smaller ones that fail as well; it then prints the seed. main.cpp says which seed.

namespace zorv {

/// Numbers below a limit, for whoever makes things of them; each is generated, and becomes smaller where that is tried.
inline WireTexts::Below generated() {
    return [](std::uint64_t limit) {
        return limit < 2 ? 0 : *rc::gen::resize(1000, rc::gen::inRange<std::uint64_t>(0, limit));
    };
}

} // namespace zorv
