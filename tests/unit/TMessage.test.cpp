// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/TMessage.h"

#include "platform/libtransport/TConfirmable.h"
#include "tests/support/errorOf.h"
#include "tests/support/json.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"
#include "zwave/libquillet/PingMsg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/ip/tcp.hpp>
#include <boost/make_shared.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <iomanip>
#include <set>
#include <sstream>
#include <string>

namespace zorv {
namespace {

using testing::ElementsAre;

TMessage::Endpoint endpoint(char const* address, unsigned short port) {
    return {boost::asio::ip::make_address(address), port};
}

/// The header of the golden messages.
char const* const header =
    R"({"__name__":"zorv::TMessage","__bases__":[],"version_":2,"id_":"11111111-2222-4333-8444-555555555555",)"
    R"("timestamp_":"2026-01-31T12:34:56.789Z","priority_":"high","source_":"192.0.2.7:4711","role_":"request",)"
    R"("correlation_":"66666666-7777-4888-9999-aaaaaaaaaaaa"})";

TMessage readHeader(std::string const& text) {
    TMessage message;
    Serializer s(text);
    message.serialExtract(s);
    return message;
}

std::string errorOfHeader(std::string const& text) {
    return errorOf([&] { readHeader(text); });
}

TEST(TMessage, HasVersionOneNormalPriorityNoSourceAndNoRoleByDefault) {
    TMessage const message;
    EXPECT_EQ(message.version(), 1);
    EXPECT_EQ(message.priority(), Priority::normal);
    EXPECT_EQ(message.source(), endpoint("0.0.0.0", 0));
    EXPECT_EQ(message.role(), MessageRole::none);
    EXPECT_TRUE(message.correlation().is_nil());
}

TEST(TMessage, IsStampedWithTheTimeWhenItIsMade) {
    auto const before = TimeStamp::now();
    TMessage const message;
    EXPECT_FALSE(message.timestamp() < before);
    EXPECT_FALSE(TimeStamp::now() < message.timestamp());
}

TEST(TMessage, HasARandomIdentityOfVersion4) {
    std::set<std::string> ids;
    for (int i = 0; i < 1000; ++i) {
        auto const id = boost::uuids::to_string(TMessage().id());
        EXPECT_EQ(id[14], '4') << id;
        EXPECT_NE(std::string("89ab").find(id[19]), std::string::npos) << id;
        ids.insert(id);
    }
    EXPECT_EQ(ids.size(), 1000U);
}

TEST(TMessage, WritesTheFrameThatEndsTheChain) { EXPECT_EQ(toText(readHeader(header)), header); }

TEST(TMessage, ReadsEveryMemberOfItsHeader) {
    auto const message = readHeader(header);
    EXPECT_EQ(message.version(), 2);
    EXPECT_EQ(boost::uuids::to_string(message.id()), "11111111-2222-4333-8444-555555555555");
    EXPECT_EQ(message.timestamp(), TimeStamp(1769862896789));
    EXPECT_EQ(message.priority(), Priority::high);
    EXPECT_EQ(message.source(), endpoint("192.0.2.7", 4711));
    EXPECT_EQ(message.role(), MessageRole::request);
    EXPECT_EQ(boost::uuids::to_string(message.correlation()), "66666666-7777-4888-9999-aaaaaaaaaaaa");
}

TEST(TMessage, DrawsTheIdentityAndTheTimeThatItsTextDoesNotHave) {
    auto const before = TimeStamp::now();
    auto const first = readBack<PingMsg>(R"({"__name__":"zorv::PingMsg"})");
    auto const second = readBack<PingMsg>(R"({"__name__":"zorv::PingMsg"})");
    auto const after = TimeStamp::now();
    EXPECT_EQ(first->id().version(), boost::uuids::uuid::version_random_number_based);
    EXPECT_NE(first->id(), second->id());
    EXPECT_FALSE(first->timestamp() < before);
    EXPECT_FALSE(after < first->timestamp());
    auto const fresh = PingMsg::create(ZwaveAddress());
    EXPECT_NE(fresh->id(), first->id());
    EXPECT_FALSE(fresh->timestamp() < first->timestamp());
}

TEST(TMessage, DrawsOnlyWhatItsTextDoesNotHave) {
    auto const withHeader = [](std::string const& members) {
        return readBack<PingMsg>(
            R"({"__name__":"zorv::PingMsg","__bases__":[{"__name__":"zorv::Confirmable","__bases__":)"
            R"([{"__name__":"zorv::TConfirmable","__bases__":[{"__name__":"zorv::TMessage",)" +
            members + "}]}]}]}");
    };
    auto const nil = withHeader(R"("id_":"00000000-0000-0000-0000-000000000000")");
    EXPECT_TRUE(nil->id().is_nil());
    EXPECT_TRUE(TimeStamp() < nil->timestamp());
    auto const start = withHeader(R"("timestamp_":"1970-01-01T00:00:00.000Z")");
    EXPECT_FALSE(start->id().is_nil());
    EXPECT_EQ(start->timestamp(), TimeStamp());
}

TEST(TMessage, DrawsAnIdentityAfterAMessageThatCouldNotBeRead) {
    EXPECT_EQ(errorOf([] { readBack<PingMsg>(R"({"__name__":"zorv::PingMsg","latencyMs_":true})"); }),
              "SerializerError: latencyMs_: expected unsigned int, got boolean");
    auto const first = PingMsg::create(ZwaveAddress());
    auto const second = PingMsg::create(ZwaveAddress());
    EXPECT_NE(first->id(), second->id());
    EXPECT_TRUE(TimeStamp() < first->timestamp());
}

TEST(TMessage, WritesAnIPv6SourceInBrackets) {
    TMessage message;
    message.source(endpoint("2001:db8::7", 4711));
    EXPECT_EQ(toJson(message)["source_"].asString(), "[2001:db8::7]:4711");
}

TEST(TMessage, RefusesHeaderMembersOfTheWrongKind) {
    EXPECT_EQ(errorOfHeader(R"({"version_":"1"})"), "SerializerError: version_: expected int, got string");
    EXPECT_EQ(errorOfHeader(R"({"id_":"x"})"), "SerializerError: id_: expected UUID, got \"x\"");
    EXPECT_EQ(errorOfHeader(R"({"timestamp_":0})"), "SerializerError: timestamp_: expected string, got int");
    EXPECT_EQ(errorOfHeader(R"({"priority_":"urgent"})"),
              "InvalidEnumError: priority_: invalid Priority text \"urgent\"");
    EXPECT_EQ(errorOfHeader(R"({"source_":"here"})"), "SerializerError: source_: expected TCP endpoint, got \"here\"");
    EXPECT_EQ(errorOfHeader(R"({"role_":"Request"})"), "InvalidEnumError: role_: invalid MessageRole text \"Request\"");
    EXPECT_EQ(errorOfHeader(R"({"correlation_":null})"), "SerializerError: correlation_: expected string, got null");
}

TEST(TMessage, PrintsItsWireText) {
    std::ostringstream os;
    os << std::setw(5000);
    readHeader(header).print(os);
    EXPECT_EQ(os.str(), header);
}

TEST(TMessage, ShowsItsHeaderAsLabelsAndValues) {
    auto const rows = shown(readHeader(header));
    using Row = std::vector<std::string>;
    EXPECT_THAT(rows, ElementsAre(Row{"Message:", "TMessage"}, Row{"Id:", "11111111-2222-4333-8444-555555555555"},
                                  Row{"Time:", "2026-01-31T12:34:56.789Z"}, Row{"Priority:", "high"},
                                  Row{"Source:", "192.0.2.7:4711"}, Row{"Role:", "request"}));
}

TEST(TMessage, IsNamedAfterItsMostDerivedClass) {
    PingMsg const ping;
    TMessage const& message = ping;
    EXPECT_EQ(message.name(), "PingMsg");
    EXPECT_EQ(TMessage().name(), "TMessage");
}

// ---- answers

TEST(SetResponse, TakesTheRequestsIdentityAsCorrelationAndItsSource) {
    auto const request = readHeader(header);
    TMessage response;
    response.setResponse(request);
    EXPECT_EQ(response.correlation(), request.id());
    EXPECT_EQ(response.source(), endpoint("192.0.2.7", 4711));
}

TEST(SetResponse, LeavesRolePriorityAndVersionAsTheyAre) {
    auto const request = readHeader(header);
    TMessage response;
    response.role(MessageRole::report);
    response.priority(Priority::low);
    response.setResponse(request);
    EXPECT_EQ(response.role(), MessageRole::report);
    EXPECT_EQ(response.priority(), Priority::low);
    EXPECT_EQ(response.version(), 1);
}

TEST(SetResponse, KeepsTheIdentityAndTheTimeOfAMessageOfItsOwn) {
    auto const request = readHeader(header);
    TMessage response;
    auto const id = response.id();
    auto const timestamp = response.timestamp();
    response.setResponse(request);
    EXPECT_EQ(response.id(), id);
    EXPECT_EQ(response.timestamp(), timestamp);
}

TEST(SetResponse, GivesACopyOfTheRequestAFreshIdentityAndTime) {
    auto const request = readHeader(header);
    TMessage response(request);
    response.setResponse(request);
    EXPECT_NE(response.id(), request.id());
    EXPECT_FALSE(response.id().is_nil());
    EXPECT_LT(request.timestamp(), response.timestamp());
    EXPECT_EQ(response.correlation(), request.id());
}

TEST(SetResponse, AMessageMayAnswerItself) {
    auto message = readHeader(header);
    message.setResponse(message);
    EXPECT_EQ(boost::uuids::to_string(message.correlation()), "11111111-2222-4333-8444-555555555555");
    EXPECT_NE(message.id(), message.correlation());
    EXPECT_EQ(message.source(), endpoint("192.0.2.7", 4711));
}

// ---- order

boost::shared_ptr<TMessage> queued(Priority::Enum priority, char const* timestamp) {
    return boost::make_shared<TMessage>(
        readHeader("{\"priority_\":\"" + toString(priority) + "\",\"timestamp_\":\"" + timestamp + "\"}"));
}

TEST(MessageOrder, LowerPrioritiesComeAfterHigherOnes) {
    auto const low = queued(Priority::low, "2026-01-01T00:00:00.000Z");
    auto const high = queued(Priority::high, "2026-01-02T00:00:00.000Z");
    EXPECT_TRUE(low->less(high));
    EXPECT_FALSE(high->less(low));
}

TEST(MessageOrder, YoungerMessagesComeAfterOlderOnesOfTheSamePriority) {
    auto const older = queued(Priority::normal, "2026-01-01T00:00:00.000Z");
    auto const younger = queued(Priority::normal, "2026-01-01T00:00:00.001Z");
    EXPECT_TRUE(younger->less(older));
    EXPECT_FALSE(older->less(younger));
}

TEST(MessageOrder, AMessageDoesNotComeAfterItselfOrANullPointer) {
    auto const message = queued(Priority::normal, "2026-01-01T00:00:00.000Z");
    EXPECT_FALSE(message->less(message));
    EXPECT_FALSE(message->less(nullptr));
}

// ---- the result

TEST(TConfirmable, CarriesItsResultInAFrameOfItsOwn) {
    TConfirmable confirmable(TResult::noBlobs);
    Serializer s(R"({"__bases__":[)" + std::string(header) + "]}");
    confirmable.serialExtract(s);
    EXPECT_EQ(toText(confirmable),
              R"({"__name__":"zorv::TConfirmable","__bases__":[)" + std::string(header) + R"(],"result_":"noBlobs"})");
}

TEST(TConfirmable, ClonesItself) {
    TConfirmable const confirmable(TResult::failure);
    EXPECT_EQ(toText(*confirmable.clone()), toText(confirmable));
}

TEST(MessageRole, HasItsNumbersAndTexts) {
    EXPECT_EQ(toString(static_cast<MessageRole::Enum>(0)), "none");
    EXPECT_EQ(toString(static_cast<MessageRole::Enum>(1)), "request");
    EXPECT_EQ(toString(static_cast<MessageRole::Enum>(2)), "response");
    EXPECT_EQ(toString(static_cast<MessageRole::Enum>(3)), "report");
}

TEST(ZResult, HasItsNumbersAndTexts) {
    char const* const texts[] = {"none",         "success",        "failure",         "inProgress",      "rejected",
                                 "timeout",      "fileNotFound",   "fileOpenFailure", "fileReadFailure", "noBlobs",
                                 "nodeNotFound", "nodeNotReached", "nodeAsleep"};
    int number = 0;
    for (auto const* const text : texts) { EXPECT_EQ(toString(static_cast<ZResult::Enum>(number++)), text); }
}

TEST(ZResult, IsNamedZResultInErrors) {
    EXPECT_EQ(errorOf([] { ZResult::toEnum("Success"); }), "InvalidEnumError: invalid ZResult text \"Success\"");
}

} // namespace
} // namespace zorv
