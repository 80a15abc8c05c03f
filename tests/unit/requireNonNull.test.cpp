// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/support/requireNonNull.h"

#include "tests/support/errorOf.h"
#include "tests/support/wire.h"
#include "zwave/libquillet/CommandClassMsg.h"
#include "zwave/libquillet/ManageNvmMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

namespace zorv {
namespace {

TEST(RequireNonNull, ReturnsTheObjectOfThePointer) {
    auto const seven = boost::make_shared<int>(7);
    EXPECT_EQ(&requireNonNull(seven, "seven is null"), seven.get());
}

TEST(RequireNonNull, ThrowsTheGivenTextForANullPointer) {
    EXPECT_EQ(errorOf([] { requireNonNull(boost::shared_ptr<int>(), "seven is null"); }),
              "NullPointerError: seven is null");
}

TEST(RequireNonNull, RefusesToShowANullCommand) {
    auto const message = readBack<CommandClassMsg>(R"({"__name__":"zorv::CommandClassMsg","command_":null})");
    StringVecVec rows;
    EXPECT_EQ(errorOf([&] { message->accumulateDisplay(rows); }), "NullPointerError: command is null");
    EXPECT_TRUE(rows.empty());
}

TEST(RequireNonNull, RefusesToShowANullDevice) {
    auto const message = readBack<NodeInformationMsg>(
        R"({"__name__":"zorv::NodeInformationMsg","devices_":[[{"homeId_":1,"nodeId_":2},null]]})");
    StringVecVec rows;
    EXPECT_EQ(errorOf([&] { message->accumulateDisplay(rows); }), "NullPointerError: device is null");
}

TEST(RequireNonNull, RefusesToCountAndCheckANullBlob) {
    auto const message = readBack<ManageNvmMsg>(R"({"__name__":"zorv::ManageNvmMsg","blobs_":[null]})");
    EXPECT_EQ(errorOf([&] { message->size(); }), "NullPointerError: blob is null");
    EXPECT_EQ(errorOf([&] { message->checkBlobs(); }), "NullPointerError: blob is null");
}

} // namespace
} // namespace zorv
