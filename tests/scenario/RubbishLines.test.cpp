// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/LineClient.h"
#include "tests/scenario/Process.h"
#include "zwave/libquillet/Confirmable.h"
#include "zwave/libquillet/PingMsg.h"

#include <boost/uuid/uuid_io.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <typeinfo>

namespace {

using namespace scenario;
using namespace zorv;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string const identity = "11111111-2222-4333-8444-555555555555";
std::string const none = "00000000-0000-0000-0000-000000000000";

/// A ping in which `was` is replaced by `is`.
std::string ping(std::string const& was = "", std::string const& is = "") {
    std::string text = R"({"__name__":"zorv::PingMsg","__bases__":[{"__name__":"zorv::Confirmable","__bases__":[)"
                       R"({"__name__":"zorv::TConfirmable","__bases__":[{"__name__":"zorv::TMessage","__bases__":[],)"
                       R"("version_":1,"id_":"11111111-2222-4333-8444-555555555555","priority_":"normal"}],)"
                       R"("result_":"none"}]}],"destination_":{"homeId_":3237998081,"nodeId_":1},"latencyMs_":0})";
    return was.empty() ? text : text.replace(text.find(was), was.size(), is);
}

std::string nested(std::string const& open, std::string const& close) {
    std::string text;
    for (int i = 0; i < 100000; ++i) { text += open; }
    for (int i = 0; i < 100000; ++i) { text += close; }
    return text;
}

class RubbishLines : public testing::Test {
protected:
    /// Sends the line, expects the rejection with the correlation, and expects the connection to serve on.
    void expectRejection(std::string const& line, std::string const& correlation) {
        ASSERT_TRUE(client_.sendLine(line));
        expectRejection(*client_.receive(), correlation);
        expectService(client_);
    }

    static void expectRejection(TMessage const& answer, std::string const& correlation) {
        ASSERT_TRUE(typeid(answer) == typeid(Confirmable)) << answer.name();
        EXPECT_EQ(dynamic_cast<Confirmable const&>(answer).result(), ZResult::rejected);
        EXPECT_EQ(to_string(answer.correlation()), correlation);
    }

    static void expectService(LineClient& client) {
        ASSERT_TRUE(client.sendLine(ping()));
        auto const answer = boost::dynamic_pointer_cast<PingMsg>(client.receive());
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->result(), ZResult::success);
        EXPECT_EQ(to_string(answer->correlation()), identity);
    }

    DaemonProcess daemon_;
    OpenClient client_{daemon_.port()};
};

TEST_F(RubbishLines, GoodLineIsServed) { expectService(client_); }

TEST_F(RubbishLines, EmptyLineIsRejected) { expectRejection("", none); }

TEST_F(RubbishLines, TextThatIsNoJsonIsRejected) { expectRejection("GET / HTTP/1.1", none); }

TEST_F(RubbishLines, TruncatedMessageIsRejected) { expectRejection(ping().substr(0, ping().size() - 1), none); }

TEST_F(RubbishLines, ArrayIsRejected) { expectRejection("[" + ping() + "]", none); }

TEST_F(RubbishLines, TwoMessagesInOneLineAreRejected) { expectRejection(ping() + ping(), none); }

TEST_F(RubbishLines, ObjectWithoutAClassIsRejected) { expectRejection("{}", none); }

TEST_F(RubbishLines, MemberOfTheWrongTypeIsRejectedWithTheCorrelation) {
    expectRejection(ping("\"nodeId_\":1", "\"nodeId_\":\"1\""), identity);
}

TEST_F(RubbishLines, NumberOutOfRangeIsRejectedWithTheCorrelation) {
    expectRejection(ping("\"nodeId_\":1", "\"nodeId_\":256"), identity);
    expectRejection(ping("\"latencyMs_\":0", "\"latencyMs_\":4294967296"), identity);
    expectRejection(ping("\"latencyMs_\":0", "\"latencyMs_\":-1"), identity);
}

TEST_F(RubbishLines, UnknownClassIsRejectedWithTheCorrelation) {
    expectRejection(ping("zorv::PingMsg", "zorv::PongMsg"), identity);
}

TEST_F(RubbishLines, UnknownEnumerationTextIsRejectedWithTheCorrelation) {
    expectRejection(ping("\"none\"", "\"perhaps\""), identity);
    expectRejection(ping("\"normal\"", "\"normally\""), identity);
}

TEST_F(RubbishLines, BadMemberBeforeTheIdentityIsRejectedWithTheCorrelation) {
    expectRejection(ping("\"version_\":1", "\"version_\":\"one\""), identity);
}

TEST_F(RubbishLines, BadIdentityIsRejectedWithoutACorrelation) {
    expectRejection(ping("11111111-", "one-"), none);
    expectRejection(ping("\"" + identity + "\"", "[1]"), none);
}

TEST_F(RubbishLines, IdentityOutsideOfTheHeaderIsNotTakenForTheCorrelation) {
    expectRejection(R"({"__name__":"zorv::PongMsg","id_":"11111111-2222-4333-8444-555555555555"})", none);
}

TEST_F(RubbishLines, HundredThousandLevelsOfNestingAreRejected) {
    expectRejection(nested("[", "]"), none);
    expectRejection(nested("{\"a\":", "}"), none);
    expectRejection(nested("{\"__bases__\":[", "]}"), none);
}

TEST_F(RubbishLines, NulInAStringIsRejected) {
    expectRejection(ping("zorv::PingMsg", std::string("zorv::Ping\0Msg", 14)), none);
}

TEST_F(RubbishLines, InvalidUtf8IsRejected) {
    expectRejection(ping("zorv::PingMsg", "zorv::Ping\xFFMsg"), none);
    expectRejection(ping("zorv::PingMsg", "zorv::Ping\xC3"), none);
}

TEST_F(RubbishLines, CarriageReturnBeforeTheLineEndIsAccepted) {
    ASSERT_TRUE(client_.send(ping() + "\r\n"));
    EXPECT_EQ(client_.receive()->name(), "PingMsg");
}

TEST_F(RubbishLines, MessageThatNobodyHandlesIsRejectedInItsOwnClassWithoutItsMembers) {
    std::string const text(100000, 'x');
    ASSERT_TRUE(client_.sendLine(
        R"({"__name__":"zorv::SubscribeMsg","events_":[")" + text +
        R"("],"__bases__":[{"__name__":"zorv::Confirmable","__bases__":[{"__name__":"zorv::TConfirmable","__bases__":[)"
        R"({"__name__":"zorv::TMessage","__bases__":[],"id_":"11111111-2222-4333-8444-555555555555"}]}]}]})"));
    auto const line = client_.receiveLine();
    EXPECT_THAT(line, StartsWith(R"({"__name__":"zorv::SubscribeMsg")"));
    EXPECT_THAT(line, HasSubstr(R"("correlation_":"11111111-2222-4333-8444-555555555555")"));
    EXPECT_THAT(line, HasSubstr(R"("result_":"rejected")"));
    EXPECT_THAT(line, HasSubstr(R"("events_":[])"));
    expectService(client_);
}

TEST_F(RubbishLines, MessageWithACorrelationIsNotAnswered) {
    ASSERT_TRUE(client_.sendLine(ping("\"priority_\"", "\"correlation_\":\"" + identity + "\",\"priority_\"")));
    expectService(client_); // the next line is the answer to the next request
}

TEST_F(RubbishLines, LaterVersionIsAnsweredWithTheDaemonsOwn) {
    ASSERT_TRUE(client_.sendLine(versionLine()));
    EXPECT_EQ(client_.receiveLine(), versionLine());
    expectService(client_);
}

TEST_F(RubbishLines, LineOfHundredMegabytesIsRejectedAndEndsTheConnection) {
    OpenClient other(daemon_.port());
    std::string const megabyte(1U << 20U, 'x');
    for (int i = 0; i < 100; ++i) { ASSERT_TRUE(client_.send(megabyte)); }
    expectRejection(*client_.receive(), none);
    EXPECT_TRUE(client_.endsAfter(0));
    expectService(other);
}

TEST_F(RubbishLines, ComplaintIsLoggedOnOneLineWhateverThePeerSent) {
    expectRejection(ping("zorv::PingMsg", "zorv::\\u001b[31m\\nPongMsg"), identity);
    daemon_.signal(SIGTERM);
    EXPECT_EQ(daemon_.wait(), 0);
    EXPECT_THAT(daemon_.errors(), Not(HasSubstr("\x1b")));
    EXPECT_THAT(daemon_.errors(), HasSubstr("unknown class \"zorv::\\x1b[31m, from 127.0.0.1:"));
}

} // namespace
