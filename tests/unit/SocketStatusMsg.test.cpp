// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SocketStatusMsg.h"

#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"
#include "tests/support/wire.h"

#include <boost/asio/ip/tcp.hpp>

namespace zorv {
namespace {

TEST(SocketStatusMsg, WritesStatus2AsDisconnectAndReadsItBack) {
    SocketStatusMsg const message(static_cast<SocketEvent::Enum>(2), SocketActor::client);
    EXPECT_EQ(ownMembers<TMessage>(message), R"(,"status_":"disconnect","actor_":"client"})");
    auto const back = readBack<SocketStatusMsg>(toText(message));
    EXPECT_EQ(back->status(), 2);
    EXPECT_EQ(back->actor(), SocketActor::client);
}

TEST(SocketStatusMsg, TakesTheEndpointAsItsSource) {
    boost::asio::ip::tcp::endpoint const endpoint(boost::asio::ip::make_address("192.0.2.7"), 4711);
    auto const message = SocketStatusMsg::create(endpoint, SocketEvent::connect, SocketActor::server);
    EXPECT_EQ(message->source(), endpoint);
    EXPECT_EQ(message->status(), SocketEvent::connect);
    EXPECT_EQ(message->actor(), SocketActor::server);
}

TEST(SocketStatusMsg, HasFourEvents) {
    expectTexts<SocketEvent::Enum>({"invalid", "connect", "disconnect", "error"});
    EXPECT_EQ(errorOf([] { toString(static_cast<SocketEvent::Enum>(4)); }),
              "InvalidEnumError: invalid SocketEvent value 4");
}

TEST(SocketStatusMsg, WritesAnEventInHex) { EXPECT_EQ(toHex(SocketEvent::error), "03"); }

TEST(SocketStatusMsg, NamesTheEnumerationOfAnUnknownText) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::SocketStatusMsg","status_":"Connect"})"),
              R"(InvalidEnumError: status_: invalid SocketEvent text "Connect")");
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::SocketStatusMsg","actor_":"error"})"),
              R"(InvalidEnumError: actor_: invalid SocketActor text "error")");
}

} // namespace
} // namespace zorv
