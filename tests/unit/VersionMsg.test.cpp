// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/VersionMsg.h"

#include "platform/libtransport/SerialValue.h"
#include "tests/support/errorOf.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/make_shared.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace zorv {
namespace {

char const* const noText = nullptr;

TEST(VersionMsg, WritesTwoKeysAndNoBases) {
    EXPECT_EQ(toText(VersionMsg("3.7")), R"({"__name__":"zorv::VersionMsg","protocolVersion_":"3.7"})");
}

TEST(VersionMsg, EscapesItsTextOnTheWire) {
    auto const text = toText(VersionMsg("a\"b"));
    EXPECT_EQ(text, R"({"__name__":"zorv::VersionMsg","protocolVersion_":"a\"b"})");
    EXPECT_EQ(readBack<VersionMsg>(text)->protocolVersion(), "a\"b");
}

TEST(VersionMsg, IsReadFromAMessageWithBasesToo) {
    auto const message = readBack<VersionMsg>(
        R"({"__bases__":[{"__name__":"zorv::Future","what":1}],"protocolVersion_":"9","__name__":"zorv::VersionMsg"})");
    EXPECT_EQ(message->protocolVersion(), "9");
    EXPECT_EQ(message->result(), ZResult::none);
}

TEST(VersionMsg, LetsTheReaderGoOnAfterIt) {
    Serializer s(R"([{"__name__":"zorv::VersionMsg","protocolVersion_":"1"},"next"])");
    boost::shared_ptr<VersionMsg> message;
    std::string next;
    s.element(0) >> message;
    s.element(1) >> next;
    EXPECT_EQ(message->protocolVersion(), "1");
    EXPECT_EQ(next, "next");
}

TEST(VersionMsg, LeavesTheSelectionToItsCaller) {
    Serializer s(R"({"version":{"__name__":"zorv::VersionMsg","protocolVersion_":"1"},"next":2})");
    VersionMsg message;
    int next = 0;
    s >> "version";
    message.serialExtract(s);
    s >> finished >> "next" >> next;
    EXPECT_EQ(message.protocolVersion(), "1");
    EXPECT_EQ(next, 2);
}

TEST(VersionMsg, DoesNotWriteOrReadItsHeader) {
    VersionMsg original("1");
    original.role(MessageRole::request);
    original.result(ZResult::failure);
    auto const copy = readBack<VersionMsg>(toText(original));
    EXPECT_NE(copy->id(), original.id());
    EXPECT_EQ(copy->role(), MessageRole::none);
    EXPECT_EQ(copy->result(), ZResult::none);
}

TEST(VersionMsg, PrintsItsHeaderOnOneLine) {
    VersionMsg message("3.7");
    message.priority(Priority::high);
    message.source({boost::asio::ip::make_address("192.0.2.7"), 4711});
    EXPECT_EQ(printed(message),
              R"({"__name__": "zorv::VersionMsg", "version_": 1, "id_": ")" + boost::uuids::to_string(message.id()) +
                  R"(", "name_": "zorv::VersionMsg", "timestamp_": ")" + toString(message.timestamp()) +
                  R"(", "priority_": "high", "source_": "192.0.2.7:4711", "protocolVersion_": "3.7"})");
}

TEST(VersionMsg, PrintsADoubleQuoteUnescaped) {
    auto const line = printed(VersionMsg("a\"b"));
    std::string const end = R"(, "protocolVersion_": "a"b"})";
    ASSERT_GT(line.size(), end.size());
    EXPECT_EQ(line.substr(line.size() - end.size()), end);
}

TEST(VersionMsg, PrintsAnIPv6SourceInBrackets) {
    VersionMsg message("1");
    message.source({boost::asio::ip::make_address("2001:db8::1"), 80});
    EXPECT_NE(printed(message).find(R"("source_": "[2001:db8::1]:80")"), std::string::npos);
}

TEST(VersionMsg, RequestCarriesTheText) {
    auto const request = VersionMsg::create("2.0");
    EXPECT_EQ(request->protocolVersion(), "2.0");
    EXPECT_EQ(request->result(), 0);
}

TEST(VersionMsg, ResponseCarriesItsOwnTextAndNoResult) {
    auto const request = VersionMsg::create("2.0");
    request->result(ZResult::success);
    auto const response = VersionMsg::create(request, "2.1");
    EXPECT_EQ(response->protocolVersion(), "2.1");
    EXPECT_EQ(response->result(), 0);
    EXPECT_EQ(response->correlation(), request->id());
}

TEST(VersionMsg, RefusesANullText) {
    EXPECT_EQ(errorOf([] { VersionMsg::create(noText); }), "NullPointerError: protocol is null");
    EXPECT_EQ(errorOf([] { VersionMsg::create(VersionMsg::create("1"), noText); }),
              "NullPointerError: protocol is null");
}

TEST(VersionMsg, ComplainsOfANullRequestBeforeANullText) {
    EXPECT_EQ(errorOf([] { VersionMsg::create(boost::shared_ptr<VersionMsg>(), noText); }),
              "NullPointerError: msg is null");
}

} // namespace
} // namespace zorv
