// SPDX-License-Identifier: Apache-2.0
#include "tests/unit/oracle/disagreement.h"

#include "platform/libtransport/Serializer.h"
#include "tests/unit/oracle/TreeReader.h"
#include "tests/unit/oracle/transcript.h"

#include <cstdio>
#include <optional>
#include <utility>

namespace zorv {

namespace {

using Position = std::pair<unsigned long, unsigned long>; // line and column

std::optional<Position> positionOf(std::string const& complaint) {
    Position position;
    auto const found =
        std::sscanf(complaint.c_str(), "malformed text: line %lu, column %lu: ", &position.first, &position.second);
    return found == 2 ? std::optional(position) : std::nullopt;
}

std::optional<Json::Value> treeOf(std::string const& text) {
    try {
        TreeReader tree(text);
        return tree.topNode();
    } catch (SerializerError const&) { return std::nullopt; }
}

/// Both complain. The tree's maker reads the text twice, so that what it names may stand behind what is wrong first. Where
/// JsonCpp complains, with a capital letter or a quote, the place is one of its own choice.
bool complainsEarlyEnough(std::string const& complaint, std::string const& treeComplaint) {
    auto const position = positionOf(complaint);
    auto const treePosition = positionOf(treeComplaint);
    if (!position || !treePosition) { return false; }
    auto const wording = treeComplaint.substr(treeComplaint.find(": ", treeComplaint.find("column")) + 2);
    bool const ownPlace = (wording.front() >= 'a' && wording.front() <= 'z') || wording.compare(0, 3, "NUL") == 0;
    return !ownPlace || *position <= *treePosition;
}

bool agree(Reading const& reading, Reading const& expected) {
    if (reading.isMalformed != expected.isMalformed) { return false; }
    return reading.isMalformed ? complainsEarlyEnough(reading.text, expected.text) : reading.text == expected.text;
}

} // namespace

std::string disagreement(std::string const& text, unsigned int seed) {
    auto const tree = treeOf(text);
    auto const guide = tree.value_or(Json::Value());
    auto const expected = readingOf([&] { return TreeReader(text); }, guide, seed);
    auto const reading = readingOf([&] { return Serializer(text); }, guide, seed);
    if (!agree(reading, expected)) {
        return text + "\n---- the reader:\n" + reading.text + "\n---- the tree:\n" + expected.text;
    }
    if (!reading.isMalformed && Serializer(text).topNode() != guide) { return text + "\n---- other trees"; }
    return "";
}

} // namespace zorv
