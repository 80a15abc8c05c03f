// SPDX-License-Identifier: Apache-2.0
// Every enumeration against the list of its numbers and texts in tests/golden/enums. The tables take their texts from the
// identifiers, so only these lists notice when one is renamed or renumbered, which peers, modules and nodes would not
// understand.
// The lists began as a copy of the declarations. They show that nothing changes by accident, not that it was right.

#include "platform/libtransport/tables/TypeDescriptor.h"
#include "tests/support/enumerations.h"
#include "tests/testPaths.h"

#include <gtest/gtest.h>

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>

#include <fstream>
#include <iterator>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace zorv {
namespace {

using Rows = std::vector<std::pair<int, std::string>>;

template <class... Enums> testing::Types<Enums...> toTypes(EnumList<Enums...>);
using EnumTypes = decltype(toTypes(Enumerations()));

Rows goldenRows(std::string const& name) {
    std::ifstream file(sourcePath("tests/golden/enums/" + name + ".txt"));
    if (!file) { throw std::runtime_error("no golden list of " + name); }
    Rows rows;
    std::string number;
    std::string text;
    while (file >> number >> text) { rows.emplace_back(std::stoi(number, nullptr, 0), text); }
    return rows;
}

template <class Enum> class EnumGoldenList : public testing::Test {
protected:
    static TypeDescriptor type() { return describe(Enum()); }
};

struct EnumName {
    template <class Enum> static std::string GetName(int) { return describe(Enum()).name; }
};

TYPED_TEST_SUITE(EnumGoldenList, EnumTypes, EnumName);

TYPED_TEST(EnumGoldenList, HoldsTheSameNumbersAndTextsAsTheTable) {
    auto const type = this->type();
    Rows rows;
    for (auto const& each : type.texts) { rows.emplace_back(each.value, each.text); }
    EXPECT_EQ(rows, goldenRows(type.name));
}

TYPED_TEST(EnumGoldenList, IsWrittenAndReadAsItStands) {
    auto const type = this->type();
    bool const hasField = type.kind == TypeDescriptor::Kind::flagSet && !type.elements.empty();
    auto const field = hasField ? '|' + type.elements[0].texts[0].text : std::string();
    auto const rows = goldenRows(type.name);
    ASSERT_FALSE(rows.empty());
    for (auto const& [number, text] : rows) {
        EXPECT_EQ(toString(static_cast<TypeParam>(number)), text + field);
        auto read = static_cast<TypeParam>(number + 1);
        parse(text, read);
        EXPECT_EQ(static_cast<int>(read), number) << text;
    }
}

template <class List> struct Names;
template <class... Enums> struct Names<EnumList<Enums...>> {
    static std::set<std::string> all() { return {describe(Enums()).name...}; }
};

TEST(EnumGoldenLists, AreThoseOfTheEnumerationsThatAreTested) {
    std::set<std::string> files;
    for (auto const& entry : boost::filesystem::directory_iterator(sourcePath("tests/golden/enums"))) {
        files.insert(entry.path().stem().string());
    }
    EXPECT_EQ(files, Names<Enumerations>::all());
}

/// How often the headers below a folder declare an enumeration's operations.
std::size_t declarationsBelow(std::string const& folder) {
    std::size_t count = 0;
    for (auto const& entry : boost::filesystem::recursive_directory_iterator(sourcePath(folder))) {
        if (entry.path().extension() != ".h" || entry.path().filename() == "EnumDeclaration.h") { continue; }
        std::ifstream file(entry.path().string());
        for (std::string line; std::getline(file, line);) {
            if (line.rfind("ZORV_ENUM_DECLARE(", 0) == 0) { ++count; }
        }
    }
    return count;
}

TEST(EnumGoldenLists, CoverEveryEnumerationThatAHeaderDeclares) {
    EXPECT_EQ(declarationsBelow("platform") + declarationsBelow("zwave"), Names<Enumerations>::all().size());
}

} // namespace
} // namespace zorv
