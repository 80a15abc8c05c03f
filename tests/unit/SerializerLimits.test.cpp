// SPDX-License-Identifier: Apache-2.0
// A text that the writer makes can be read back. Otherwise the writer refuses to make it, with the reader's error.

#include "platform/libtransport/SerialValue.h"
#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/TMessage.h"
#include "platform/libtransport/limits.h"
#include "tests/support/errorOf.h"
#include "tests/support/readFile.h"
#include "tests/testPaths.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <map>
#include <string>

namespace zorv {
namespace {

void nest(Serializer& s, std::size_t levels) {
    for (std::size_t i = 0; i < levels; ++i) { s << openbracket; }
    for (std::size_t i = 0; i < levels; ++i) { s << closebracket; }
}

TEST(SerializerLimits, ADeepTextCanBeReadBack) {
    Serializer s;
    nest(s, limits::maxDepth);
    EXPECT_TRUE(Serializer(s.str()).isArray());
}

TEST(SerializerLimits, TheWriterRefusesToNestDeeper) {
    Serializer s;
    EXPECT_EQ(errorOf([&] { nest(s, limits::maxDepth + 1); }), "SerializerError: nested deeper than 128 levels");
}

void writeMembers(Serializer& s, std::size_t count) {
    s << opencurly;
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) { s << comma; }
        s << noescape << std::to_string(i) << colon << 1;
    }
    s << closecurly;
}

TEST(SerializerLimits, AsManyValuesAsAllowedCanBeReadBack) {
    Serializer s;
    writeMembers(s, limits::maxValues - 1); // and the object itself
    int value = 0;
    Serializer reader(s.str());
    reader >> "1048574" >> value;
    EXPECT_EQ(value, 1);
}

TEST(SerializerLimits, TheWriterRefusesMoreValues) {
    Serializer s;
    EXPECT_EQ(errorOf([&] { writeMembers(s, limits::maxValues); }), "SerializerError: more than 1048576 values");
}

TEST(SerializerLimits, TheWriterRefusesAMapOfMorePairs) {
    std::map<unsigned int, unsigned int> map;
    while (map.size() < limits::maxPairs) { map.emplace(map.size(), 0U); }
    Serializer full;
    full << map;
    EXPECT_EQ(Serializer(full.str()).size(), limits::maxPairs);
    map.emplace(map.size(), 0U);
    Serializer s;
    EXPECT_EQ(errorOf([&] { s << map; }), "SerializerError: expected at most 4096 entries, got 4097");
}

TEST(SerializerLimits, TheWriterRefusesAnObjectWhoseClassNoReaderFinds) {
    Serializer s;
    auto const message = boost::make_shared<TMessage>();
    EXPECT_EQ(errorOf([&] { s << message; }), "SerializerError: unknown class \"zorv::TMessage\"");
}

TEST(SerializerLimits, TheWireDocumentQuotesThem) {
    auto const text = readFile(sourcePath("docs/wire.md"));
    for (auto const& row : {"| `maxDepth` | " + std::to_string(limits::maxDepth) + " |",
                            "| `maxValues` | " + std::to_string(limits::maxValues) + " |",
                            "| `maxPairs` | " + std::to_string(limits::maxPairs) + " |",
                            "| `maxBytes` | " + std::to_string(limits::maxBytes) + " |"}) {
        EXPECT_NE(text.find(row), std::string::npos) << row;
    }
}

} // namespace
} // namespace zorv
