// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/LineClient.h"
#include "tests/scenario/Process.h"
#include "zwave/libquillet/Confirmable.h"

#include <boost/uuid/uuid_io.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <typeinfo>

namespace {

using namespace scenario;
using namespace zorv;

std::string version(std::string const& number) {
    return R"({"__name__":"zorv::VersionMsg","protocolVersion_":")" + number + "\"}";
}

/// A client that has not opened its connection yet, but has read the daemon's version.
class Opening : public testing::Test {
protected:
    Opening() { EXPECT_EQ(client_.receiveLine(), version("1.0")); }

    void expectService() {
        ASSERT_TRUE(client_.sendLine(pingLine(1)));
        EXPECT_EQ(client_.receive()->name(), "PingMsg");
    }

    /// Sends lines that do not open a connection, and a ping. Expects the rejection, the end of the connection and a
    /// line in the log.
    void expectRefusal(std::string const& lines, std::string const& complaint) {
        ASSERT_TRUE(client_.send(lines + "\n" + pingLine(1) + "\n"));
        auto const answer = client_.receive();
        auto const& rejection = *answer;
        ASSERT_TRUE(typeid(rejection) == typeid(Confirmable)) << rejection.name();
        EXPECT_EQ(dynamic_cast<Confirmable const&>(rejection).result(), ZResult::rejected);
        correlation_ = to_string(rejection.correlation());
        EXPECT_TRUE(client_.endsAfter(0));
        daemon_.signal(SIGTERM);
        EXPECT_EQ(daemon_.wait(), 0);
        EXPECT_THAT(daemon_.errors(), testing::HasSubstr("bad first line: " + complaint));
    }

    DaemonProcess daemon_;
    LineClient client_{daemon_.port()};
    std::string correlation_;
    std::string const none_ = "00000000-0000-0000-0000-000000000000";
};

TEST_F(Opening, IsTheVersionOfEachSide) {
    ASSERT_TRUE(client_.sendLine(version("1.0")));
    expectService();
}

TEST_F(Opening, TakesAnyMinorVersion) {
    ASSERT_TRUE(client_.sendLine(version("1.17")));
    expectService();
}

TEST_F(Opening, RefusesAnotherMajorVersion) {
    expectRefusal(version("2.0"), "protocol version 2.0, this is 1.0");
    EXPECT_EQ(correlation_, none_);
}

TEST_F(Opening, RefusesAMajorVersionThatOnlyBeginsAlike) { expectRefusal(version("10.0"), "protocol version 10.0"); }

TEST_F(Opening, RefusesARequestAndDoesNotExecuteIt) {
    expectRefusal(pingLine(1), "PingMsg instead of VersionMsg");
    EXPECT_NE(correlation_, none_);
}

TEST_F(Opening, RefusesAnEmptyLine) { expectRefusal("", "malformed text"); }

TEST_F(Opening, RefusesAWebPageThatPosts) {
    expectRefusal("POST / HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n" + version("1.0"), "malformed text");
}

TEST_F(Opening, RefusesALineThatIsTooLong) { expectRefusal(std::string(20 << 20, 'x'), "line too long"); }

} // namespace
