// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/RawCommand.h"

#include "tests/support/errorOf.h"
#include "tests/support/golden.h"
#include "tests/support/wire.h"

#include <gtest/gtest.h>

namespace zorv {
namespace {

TEST(RawCommand, WritesItsGoldenTextAfterReadingIt) {
    auto const command = readBack<RawCommand>(golden("RawCommand"));
    EXPECT_EQ(toText(*command), golden("RawCommand"));
}

TEST(RawCommand, IsAGenericCommandThatGivesTheBytesAsTheyAre) {
    auto const command = readBack<GenericCommand>(golden("RawCommand"));
    EXPECT_EQ(command->bytes(), (std::vector<unsigned char>{0x25, 0x01, 0xFF}));
}

TEST(RawCommand, MayBeEmpty) {
    EXPECT_EQ(toText(RawCommand()), R"({"__name__":"zorv::RawCommand","__bases__":[{"__name__":"zorv::GenericCommand",)"
                                    R"("__bases__":[{"__name__":"zorv::Serializable","__bases__":[],"version_":1}]}],)"
                                    R"("data_":[]})");
    EXPECT_TRUE(readBlank<RawCommand>()->bytes().empty());
}

TEST(RawCommand, RefusesANumberAboveOneByte) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::RawCommand","data_":[1,256]})"),
              "SerializerError: data_[1]: expected unsigned byte, got 256");
}

TEST(RawCommand, RefusesDataThatIsNotAnArray) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::RawCommand","data_":"AQ=="})"),
              "SerializerError: data_: expected array, got string");
}

TEST(GenericCommand, CannotBeReadByItself) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::GenericCommand"})"),
              "SerializerError: unknown class \"zorv::GenericCommand\"");
}

} // namespace
} // namespace zorv
