// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/json.h"

#include <algorithm>
#include <string>
#include <vector>

namespace zorv {

inline void sortPairs(Json::Value& value) {
    for (auto& child : value) { sortPairs(child); }
    if (!value.isArray()) { return; }
    std::vector<Json::Value> elements(value.begin(), value.end());
    bool const arePairs = std::all_of(elements.begin(), elements.end(), [](Json::Value const& element) {
        return element.isArray() && element.size() == 2;
    });
    if (!arePairs) { return; }
    std::sort(elements.begin(), elements.end());
    for (Json::ArrayIndex i = 0; i < value.size(); ++i) { value[i] = elements[i]; }
}

/// A wire text to compare with another one: the pairs of some maps come in any order.
inline Json::Value withSortedPairs(std::string const& text) {
    auto value = toJson(text);
    sortPairs(value);
    return value;
}

} // namespace zorv
