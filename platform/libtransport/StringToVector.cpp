// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/StringToVector.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>

#include <algorithm>

namespace zorv {

void StringToVector(std::string const& text, std::vector<std::string>& parts, std::string const& delimiters,
                    bool keepEmpty) {
    parts.clear();
    if (text.empty()) { return; }
    boost::algorithm::split(parts, text, boost::algorithm::is_any_of(delimiters));
    if (!keepEmpty) { parts.erase(std::remove(parts.begin(), parts.end(), std::string()), parts.end()); }
}

} // namespace zorv
