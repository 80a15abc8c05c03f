// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/QuitMsg.h"

#include "tests/support/wire.h"

namespace zorv {
namespace {

TEST(QuitMsg, WritesItsNameAndTheFrameOfTMessageAndNothingElse) {
    QuitMsg const message;
    EXPECT_EQ(ownMembers<TMessage>(message), "}");
    EXPECT_EQ(toText(message).find(R"({"__name__":"zorv::QuitMsg","__bases__":[{"__name__":"zorv::TMessage",)"), 0U);
}

} // namespace
} // namespace zorv
