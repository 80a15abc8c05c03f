// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

namespace zorv {

/// Expects these texts of an enumeration's values from 0 on, from every operation that writes or reads them.
template <class Enum> void expectTexts(std::vector<std::string> const& texts) {
    ASSERT_FALSE(texts.empty());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        auto const value = static_cast<Enum>(i);
        std::ostringstream os;
        os << value;
        EXPECT_EQ(os.str(), texts[i]);
        EXPECT_EQ(toString(value), texts[i]);
        std::istringstream is(texts[i]);
        auto read = static_cast<Enum>(i + 1);
        is >> read;
        EXPECT_EQ(read, value) << texts[i];
        parse(texts[i], read = static_cast<Enum>(i + 1));
        EXPECT_EQ(read, value) << texts[i];
    }
}

} // namespace zorv
