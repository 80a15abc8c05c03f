// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/parseNode.h"

#include "platform/libzorvshared/nodeIds.h"

#include <charconv>
#include <stdexcept>

namespace zorv {

namespace {

bool readNumber(std::string const& text, int base, unsigned int& number) {
    auto const* const end = text.data() + text.size();
    auto const read = std::from_chars(text.data(), end, number, base);
    return read.ec == std::errc() && read.ptr == end;
}

} // namespace

ZwaveAddress parseNode(std::string const& text) {
    auto const colon = text.find(':');
    unsigned int homeId = 0;
    unsigned int nodeId = 0;
    bool const homeGood = colon == std::string::npos || (colon == 8 && readNumber(text.substr(0, colon), 16, homeId));
    bool const nodeGood = readNumber(colon == std::string::npos ? text : text.substr(colon + 1), 10, nodeId);
    if (!homeGood || !nodeGood || !isNodeId(nodeId)) {
        throw std::invalid_argument("not a node: \"" + text + "\"; expected a node id from " +
                                    std::to_string(firstNodeId) + " to " + std::to_string(lastNodeId) +
                                    ", such as 5 or c0ffee01:5");
    }
    return {homeId, static_cast<unsigned char>(nodeId)};
}

CLI::Validator isNode() {
    return CLI::Validator(
        [](std::string const& text) {
            try {
                parseNode(text);
            } catch (std::invalid_argument const& error) { return std::string(error.what()); }
            return std::string();
        },
        "");
}

} // namespace zorv
