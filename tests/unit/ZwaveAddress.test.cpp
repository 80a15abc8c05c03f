// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/ZwaveAddress.h"

#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/tables/TypeDescriptor.h"
#include "tests/support/errorOf.h"
#include "tests/support/wire.h"

#include <gtest/gtest.h>

#include <boost/unordered_set.hpp>

#include <string>

namespace zorv {
namespace {

ZwaveAddress readAddress(std::string const& text) {
    ZwaveAddress address(0xAAAAAAAA, 170);
    Serializer s(text);
    address.serialExtract(s);
    return address;
}

std::string errorOfAddress(std::string const& text) {
    return errorOf([&] { readAddress(text); });
}

TEST(ZwaveAddress, IsTheInvalidAddressByDefault) {
    EXPECT_EQ(ZwaveAddress(), ZwaveAddress(0, 0));
    EXPECT_EQ(ZwaveAddress::INVALID_ADDRESS, ZwaveAddress(0, 0));
    EXPECT_EQ(ZwaveAddress::INVALID_ADDRESS.homeId(), 0U);
    EXPECT_EQ(ZwaveAddress::INVALID_ADDRESS.nodeId(), 0);
}

TEST(ZwaveAddress, KeepsHomeIdAndNodeId) {
    ZwaveAddress const address(0xC0FFEE01, 232);
    EXPECT_EQ(address.homeId(), 0xC0FFEE01U);
    EXPECT_EQ(address.nodeId(), 232);
}

TEST(ZwaveAddress, ShowsTheHomeIdInEightHexDigitsAndTheNodeIdInDecimal) {
    EXPECT_EQ(ZwaveAddress(0xC0FFEE01, 5).address(), "c0ffee01:5");
    EXPECT_EQ(ZwaveAddress(0, 0).address(), "00000000:0");
    EXPECT_EQ(ZwaveAddress(0xFFFFFFFF, 255).address(), "ffffffff:255");
    EXPECT_EQ(ZwaveAddress(0x1A, 10).address(), "0000001a:10");
}

TEST(ZwaveAddress, IsWrittenAsAnObjectWithoutAFrame) {
    EXPECT_EQ(toText(ZwaveAddress(0xC0FFEE01, 5)), R"({"homeId_":3237998081,"nodeId_":5})");
    EXPECT_EQ(toText(ZwaveAddress(0xFFFFFFFF, 255)), R"({"homeId_":4294967295,"nodeId_":255})");
}

TEST(ZwaveAddress, IsReadFromItsObject) {
    EXPECT_EQ(readAddress(R"({"homeId_":4294967295,"nodeId_":255})"), ZwaveAddress(0xFFFFFFFF, 255));
}

TEST(ZwaveAddress, KeepsAbsentMembers) {
    EXPECT_EQ(readAddress(R"({"nodeId_":5})"), ZwaveAddress(0xAAAAAAAA, 5));
    EXPECT_EQ(readAddress(R"({"homeId_":1})"), ZwaveAddress(1, 170));
    EXPECT_EQ(readAddress("{}"), ZwaveAddress(0xAAAAAAAA, 170));
}

TEST(ZwaveAddress, RefusesNumbersThatAreOutOfRange) {
    EXPECT_EQ(errorOfAddress(R"({"homeId_":4294967296})"),
              "SerializerError: homeId_: expected unsigned int, got 4294967296");
    EXPECT_EQ(errorOfAddress(R"({"homeId_":-1})"), "SerializerError: homeId_: expected unsigned int, got -1");
    EXPECT_EQ(errorOfAddress(R"({"nodeId_":256})"), "SerializerError: nodeId_: expected unsigned byte, got 256");
    EXPECT_EQ(errorOfAddress(R"({"nodeId_":-1})"), "SerializerError: nodeId_: expected unsigned byte, got -1");
}

TEST(ZwaveAddress, RefusesWhatIsNotAnObject) {
    EXPECT_EQ(errorOfAddress("[1,2]"), "SerializerError: expected object, got array");
    EXPECT_EQ(errorOfAddress("\"c0ffee01:5\""), "SerializerError: expected object, got string");
    EXPECT_EQ(errorOfAddress("null"), "SerializerError: expected object, got null");
}

TEST(ZwaveAddress, IsOrderedByHomeIdAndThenByNodeId) {
    EXPECT_LT(ZwaveAddress(1, 9), ZwaveAddress(2, 1));
    EXPECT_LT(ZwaveAddress(1, 1), ZwaveAddress(1, 2));
    EXPECT_FALSE(ZwaveAddress(1, 2) < ZwaveAddress(1, 2));
    EXPECT_FALSE(ZwaveAddress(2, 1) < ZwaveAddress(1, 9));
    EXPECT_LT(ZwaveAddress(0x7FFFFFFF, 0), ZwaveAddress(0x80000000, 0));
}

TEST(ZwaveAddress, IsEqualOnlyInBothParts) {
    EXPECT_EQ(ZwaveAddress(1, 2), ZwaveAddress(1, 2));
    EXPECT_NE(ZwaveAddress(1, 2), ZwaveAddress(1, 3));
    EXPECT_NE(ZwaveAddress(1, 2), ZwaveAddress(2, 2));
}

TEST(ZwaveAddress, EqualAddressesHaveEqualHashes) {
    EXPECT_EQ(ZwaveAddress(0xC0FFEE01, 5).hash(), ZwaveAddress(0xC0FFEE01, 5).hash());
    EXPECT_EQ(hash_value(ZwaveAddress(0xC0FFEE01, 5)), ZwaveAddress(0xC0FFEE01, 5).hash());
}

TEST(ZwaveAddress, AllNodesOfANetworkHaveDifferentHashes) {
    boost::unordered_set<std::size_t> hashes;
    for (int node = 0; node < 256; ++node) {
        hashes.insert(ZwaveAddress(0xC0FFEE01, static_cast<unsigned char>(node)).hash());
    }
    EXPECT_EQ(hashes.size(), 256U);
}

TEST(ZwaveAddress, DescribesItself) {
    auto const type = ZwaveAddress::describe();
    EXPECT_EQ(type.kind, TypeDescriptor::Kind::record);
    EXPECT_EQ(type.name, "ZwaveAddress");
    ASSERT_EQ(type.members.size(), 2U);
    EXPECT_EQ(type.members[0].key, "homeId_");
    EXPECT_EQ(type.members[0].defaultJson, "0");
    EXPECT_EQ(type.members[0].type.maximum, 4294967295.0);
    EXPECT_EQ(type.members[1].key, "nodeId_");
    EXPECT_EQ(type.members[1].type.name, "unsigned byte");
    EXPECT_EQ(type.members[1].type.maximum, 255.0);
}

} // namespace
} // namespace zorv
