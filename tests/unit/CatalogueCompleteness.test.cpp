// SPDX-License-Identifier: Apache-2.0
// The catalogue's list, the registry, the golden texts, the schema and the reference hold the same classes.

#include "platform/libtransport/SerialRegistrar.h"
#include "platform/libtransport/tables/TypeDescriptor.h"
#include "tests/support/errorOf.h"
#include "tests/support/json.h"
#include "tests/testPaths.h"
#include "zwave/libquillet/Catalogue.h"

#include <gtest/gtest.h>

#include <boost/filesystem/directory.hpp>
#include <boost/filesystem/path.hpp>

#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace zorv {
namespace {

using Names = std::set<std::string>;

Names messages() {
    Names names;
    for (auto const& message : describeCatalogue()) { names.insert(message.name); }
    return names;
}

/// What is registered beside the messages of the list: the base that is a message by itself, and the framed records.
Names const others{"zorv::Blob", "zorv::Confirmable", "zorv::Device", "zorv::RawCommand"};

Names everything() {
    auto names = messages();
    names.insert(others.begin(), others.end());
    return names;
}

std::string contents(std::string const& file) {
    std::ifstream stream(sourcePath(file));
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

TEST(CatalogueCompleteness, ListsEveryMessageThatHasAHeader) {
    Names headers;
    for (auto const& entry : boost::filesystem::directory_iterator(sourcePath("zwave/libquillet"))) {
        auto const name = entry.path().stem().string();
        if (entry.path().extension() != ".h" || name.size() < 4) { continue; }
        auto const ending = name.substr(name.size() - 3);
        if (ending == "Msg" || ending == "Evt") { headers.insert("zorv::" + name); }
    }
    EXPECT_EQ(headers, messages());
}

TEST(CatalogueCompleteness, RegistersItsMessagesAndTheClassesBesideThem) {
    Names registered;
    for (auto const& name : SerialRegistry::names()) { registered.insert(name); }
    registered.erase("zorv::SampleMsg"); // registered by Confirmable.test.cpp
    EXPECT_EQ(registered, everything());
}

TEST(CatalogueCompleteness, HasAGoldenTextOfEachRegisteredClassAndOfNoOther) {
    Names golden;
    for (auto const& entry : boost::filesystem::directory_iterator(sourcePath("tests/golden"))) {
        if (entry.path().extension() == ".json") { golden.insert("zorv::" + entry.path().stem().string()); }
    }
    EXPECT_EQ(golden, everything());
}

TEST(CatalogueCompleteness, HasEachRegisteredClassInTheSchemaAndTakesOnlyMessagesAsMessages) {
    auto const schema = toJson(contents("docs/messages.schema.json"));
    Names accepted;
    for (auto const& choice : schema["anyOf"]) { accepted.insert(choice["$ref"].asString()); }
    Names expected{"#/$defs/zorv::Confirmable"};
    for (auto const& name : messages()) { expected.insert("#/$defs/" + name); }
    EXPECT_EQ(accepted, expected);
    for (auto const& name : everything()) {
        EXPECT_EQ(schema["$defs"][name]["properties"]["__name__"]["const"].asString(), name);
    }
}

TEST(CatalogueCompleteness, HasEachRegisteredClassInTheReferenceOnce) {
    auto const reference = contents("docs/messages.md");
    for (auto const& name : everything()) {
        auto const heading = "\n### " + name + '\n';
        auto const found = reference.find(heading);
        ASSERT_NE(found, std::string::npos) << name;
        EXPECT_EQ(reference.find(heading, found + 1), std::string::npos) << name;
    }
}

TEST(CatalogueCompleteness, ListsItsMessagesInAlphabeticalOrder) {
    std::string last;
    for (auto const& message : describeCatalogue()) {
        EXPECT_LT(last, message.name);
        last = message.name;
    }
}

} // namespace
} // namespace zorv
