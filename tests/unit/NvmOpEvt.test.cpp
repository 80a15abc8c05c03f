// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/NvmOpEvt.h"

#include "platform/libtransport/throwInvalidEnum.h"
#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"
#include "tests/support/wire.h"
#include "zwave/libquillet/ManageNvmMsg.h"
#include "zwave/libquillet/PingMsg.h"

#include <gtest/gtest.h>

#include <boost/asio/ip/tcp.hpp>

#include <sstream>

namespace zorv {
namespace {

TEST(NvmOp, HasItsTexts) { expectTexts<NvmOp::Enum>({"none", "clear", "save", "restore"}); }

TEST(NvmOp, RefusesTheTextInvalid) {
    EXPECT_EQ(errorOf([] { NvmOp::toEnum("invalid"); }), "InvalidEnumError: invalid NvmOp text \"invalid\"");
}

TEST(NvmOp, IsNumberedUnlikeTheOperationsOfManageNvmMsg) {
    EXPECT_EQ(NvmOp::save, 2);
    EXPECT_EQ(ManageNvmOp::save, 1);
    EXPECT_EQ(NvmOp::restore, 3);
    EXPECT_EQ(ManageNvmOp::restore, 2);
    EXPECT_EQ(NvmOp::clear, 1);
    EXPECT_EQ(ManageNvmOp::clear, 3);
}

TEST(NvmOpEvt, HasTheOperationNoneByDefault) { EXPECT_EQ(NvmOpEvt().op(), NvmOp::none); }

TEST(NvmOpEvt, WritesOperation2AsSave) {
    auto const event = NvmOpEvt::create(PingMsg(), NvmOp::Enum(2));
    EXPECT_EQ(ownMembers<TMessage>(*event), R"(,"op_":"save"})");
}

TEST(NvmOpEvt, RefusesToWriteOperation4) {
    NvmOpEvt const event(NvmOp::Enum(4));
    EXPECT_EQ(errorOf([&] { toText(event); }), "InvalidEnumError: invalid NvmOp value 4");
}

TEST(NvmOpEvt, TakesCorrelationAndSourceFromItsCause) {
    PingMsg cause;
    cause.source({boost::asio::ip::address_v4(0xC0000207), 4711});
    auto const event = NvmOpEvt::create(cause, NvmOp::restore);
    EXPECT_EQ(event->op(), NvmOp::restore);
    EXPECT_EQ(event->correlation(), cause.id());
    EXPECT_EQ(event->source(), cause.source());
    EXPECT_NE(event->id(), cause.id());
    EXPECT_EQ(event->role(), MessageRole::none);
}

TEST(NvmOpEvt, MayBeCausedByAMessageThatExpectsNoAnswer) {
    NvmOpEvt const cause(NvmOp::clear);
    EXPECT_EQ(NvmOpEvt::create(cause, NvmOp::save)->correlation(), cause.id());
}

TEST(NvmOpEvt, RefusesAnUnknownOperation) {
    EXPECT_EQ(errorOf([] { readBack<NvmOpEvt>(R"({"__name__":"zorv::NvmOpEvt","op_":"validate"})"); }),
              "InvalidEnumError: op_: invalid NvmOp text \"validate\"");
}

TEST(NvmOpEvt, PrintsItsWireText) {
    NvmOpEvt const event(NvmOp::save);
    std::ostringstream os;
    event.print(os);
    EXPECT_EQ(os.str(), toText(event));
}

} // namespace
} // namespace zorv
