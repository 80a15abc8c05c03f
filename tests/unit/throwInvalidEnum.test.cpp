// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/throwInvalidEnum.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace zorv {
namespace {

InvalidEnumError caught(std::function<void()> const& raise) {
    try {
        raise();
    } catch (InvalidEnumError const& error) { return error; }
    throw std::logic_error("it returned");
}

TEST(ThrowInvalidEnum, NamesAValue) {
    auto const error = caught([] { throwInvalidEnum("XxxOp", 7); });
    EXPECT_STREQ(error.what(), "invalid XxxOp value 7");
    EXPECT_EQ(error.enumName(), "XxxOp");
}

TEST(ThrowInvalidEnum, NamesANegativeValue) {
    EXPECT_STREQ(caught([] { throwInvalidEnum("XxxOp", -1); }).what(), "invalid XxxOp value -1");
}

TEST(ThrowInvalidEnum, NamesAText) {
    auto const error = caught([] { throwInvalidEnum("XxxOp", std::string("Add")); });
    EXPECT_STREQ(error.what(), "invalid XxxOp text \"Add\"");
    EXPECT_EQ(error.enumName(), "XxxOp");
}

TEST(ThrowInvalidEnum, NamesAnEmptyText) {
    EXPECT_STREQ(caught([] { throwInvalidEnum("XxxOp", std::string()); }).what(), "invalid XxxOp text \"\"");
}

TEST(ThrowInvalidEnum, ThrowsAStandardInvalidArgument) {
    EXPECT_TRUE((std::is_base_of_v<std::invalid_argument, InvalidEnumError>));
}

} // namespace
} // namespace zorv
