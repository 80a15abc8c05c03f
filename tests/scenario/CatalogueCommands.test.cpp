// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/OfflineClient.h"
#include "tests/support/golden.h"
#include "tests/testPaths.h"
#include "zwave/libquillet/Catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace scenario;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class CatalogueCommands : public OfflineClient {
protected:
    /// Gives the lines to `quillet decode`.
    int decode(std::string const& lines, std::string const& option = "") {
        auto const file = directory_.write("lines", lines);
        return finish(
            {"/bin/sh", "-c", "exec \"$0\" decode " + option + " < \"$1\"", zorv::programPath("quillet"), file});
    }
};

TEST_F(CatalogueCommands, ListEveryMessageOnALine) {
    EXPECT_EQ(run({"catalogue"}), 0);
    ASSERT_THAT(lines_, SizeIs(1 + zorv::describeCatalogue().size()));
    EXPECT_THAT(lines_[0], StartsWith("Message "));
    EXPECT_THAT(lines_[1], StartsWith("zorv::AddRemoveNodeMsg "));
    EXPECT_THAT(lines_,
                Contains(AllOf(StartsWith("zorv::VersionMsg "), EndsWith("  zorv::Confirmable  protocolVersion_"))));
    EXPECT_EQ(errors_, "");
}

TEST_F(CatalogueCommands, ListEveryMessageAsALineOfJson) {
    EXPECT_EQ(run({"catalogue", "--json"}), 0);
    ASSERT_THAT(lines_, SizeIs(zorv::describeCatalogue().size()));
    EXPECT_THAT(lines_, Contains(R"({"base":"zorv::TMessage","members":[],"serialName":"zorv::QuitMsg"})"));
}

TEST_F(CatalogueCommands, DescribeAMessageWithItsRecordsAndTexts) {
    EXPECT_EQ(run({"catalogue", "DaemonStatusMsg"}), 0);
    EXPECT_THAT(
        lines_,
        ElementsAre(
            "Message           zorv::DaemonStatusMsg", //
            "Base              zorv::Confirmable",     //
            "",                                        //
            "Member            Type                   Default               Meaning",
            "address_          ZwaveAddress                                 controller that the status concerns",
            "address_.homeId_  unsigned int           0                     home id of the network",
            "address_.nodeId_  unsigned byte          0                     node id; 1 to 232 are nodes, 255 stands "
            "for "
            "all of them",
            "status_           DaemonStatus           \"notReady\"            overall state",
            "detail_           DaemonDetail flags     \"noDetail\"            what is wrong",
            "",                                                              //
            "DaemonDetail      Value                  Text",                 //
            "                  0                      noDetail",             //
            "                  1                      moduleNotPresent",     //
            "                  2                      moduleCommFailure",    //
            "                  4                      invalidCountryCode",   //
            "                  8                      firmwareFileNotFound", //
            "                  16                     lostSocket",           //
            "                  32                     timeout",              //
            "",                                                              //
            "DaemonStatus      Value                  Text",                 //
            "                  0                      notReady",             //
            "                  1                      moduleError",          //
            "                  2                      notSecure",            //
            "                  3                      secure"));
}

TEST_F(CatalogueCommands, DescribeAMessageAsJson) {
    EXPECT_EQ(run({"catalogue", "zorv::ResetDefaultsMsg", "--json"}), 0);
    EXPECT_THAT(lines_,
                ElementsAre(R"({"base":"zorv::Confirmable","members":[{"default":180,"doc":"time-out of the reset",)"
                            R"("key":"timeout_","type":{"kind":"integer","maximum":4294967295,"minimum":0,)"
                            R"("name":"unsigned int"}}],"serialName":"zorv::ResetDefaultsMsg"})"));
}

TEST_F(CatalogueCommands, RefuseAnUnknownMessage) {
    for (auto const* const command : {"catalogue", "example"}) {
        EXPECT_EQ(run({command, "NoSuchMsg"}), 2) << command;
        EXPECT_THAT(lines_, IsEmpty());
        EXPECT_THAT(errors_, HasSubstr("no message is called NoSuchMsg; \"quillet catalogue\" lists them"));
    }
}

TEST_F(CatalogueCommands, PrintAnExampleOfEveryMessageThatDecodeTakesBack) {
    ASSERT_EQ(run({"catalogue"}), 0);
    auto const list = lines_;
    ASSERT_GT(list.size(), 1U);
    std::string examples;
    for (std::size_t i = 1; i < list.size(); ++i) {
        ASSERT_EQ(run({"example", list[i].substr(0, list[i].find(' '))}), 0) << list[i];
        ASSERT_THAT(lines_, SizeIs(1));
        examples += lines_[0] + '\n';
    }
    EXPECT_EQ(decode(examples, "--json"), 0);
    std::string decoded;
    for (auto const& line : lines_) { decoded += line + '\n'; }
    EXPECT_EQ(decoded, examples);
}

TEST_F(CatalogueCommands, PrintAnExampleWithEveryMemberAtItsDefault) {
    EXPECT_EQ(run({"example", "ManageFailedNodeMsg"}), 0);
    EXPECT_THAT(lines_, ElementsAre(EndsWith(R"("result_":"failure"}]}],"operation_":"invalid",)"
                                             R"("address_":{"homeId_":0,"nodeId_":0},"status_":"invalid",)"
                                             R"("timeout_":180})")));
}

TEST_F(CatalogueCommands, ShowAMessageAsItsTable) {
    EXPECT_EQ(decode(zorv::golden("DeviceStatusMsg") + '\n'), 0);
    EXPECT_THAT(lines_, ElementsAre("DeviceStatusMsg:",                        //
                                    "Device address:         c0ffee01:5",      //
                                    "Device network status:  offline",         //
                                    "Device status:          incomplete",      //
                                    "Device lights:          blinking",        //
                                    "Security status:        s2Authenticated", //
                                    "Wake status:            asleep"));
}

TEST_F(CatalogueCommands, ShowAMessageWithoutATableAsItsMembers) {
    EXPECT_EQ(decode(zorv::golden("SubscribeMsg") + '\n' + zorv::golden("QuitMsg") + "\r\n"), 0);
    EXPECT_THAT(lines_, ElementsAre("SubscribeMsg:",                                            //
                                    "result_        \"success\"",                               //
                                    "unsubscribe_   true",                                      //
                                    "events_        [\"SystemStatusEvt\",\"DaemonStatusMsg\"]", //
                                    "QuitMsg:"));
}

TEST_F(CatalogueCommands, ShowAMessageWhoseTableFailsAsItsMembers) {
    EXPECT_EQ(decode(R"({"__name__":"zorv::ControlCommandMsg","data_":[1]})"), 0);
    EXPECT_THAT(lines_, ElementsAre("ControlCommandMsg:", "data_               [1]"));
}

TEST_F(CatalogueCommands, ShowAnObservedMessageAsItIsWritten) {
    auto const ping = zorv::golden("PingMsg");
    EXPECT_EQ(decode(R"({"__name__":"zorv::ObserveMsg","message_":)" + ping + '}'), 0);
    EXPECT_THAT(lines_, ElementsAre("ObserveMsg:",           //
                                    "result_      \"none\"", //
                                    "action_      \"none\"", //
                                    "direction_   \"none\"", //
                                    "message_     " + ping));
}

TEST_F(CatalogueCommands, ReportALineThatIsNotAMessageAndGoOn) {
    EXPECT_EQ(decode("rubbish\n\n" + zorv::golden("QuitMsg") + '\n' + zorv::golden("Blob") +
                     "\n{\"__name__\":\"zorv::LearnModeMsg\",\"timeout_\":-1}\n" + zorv::golden("QuitMsg")),
              5);
    EXPECT_THAT(lines_, ElementsAre("QuitMsg:", "QuitMsg:"));
    EXPECT_THAT(errors_, HasSubstr("quillet: line 1: malformed text: line 1, column 1: "));
    EXPECT_THAT(errors_, HasSubstr("quillet: line 4: not a message\n"));
    EXPECT_THAT(errors_, HasSubstr("quillet: line 5: timeout_: expected unsigned int, got -1\n"));
}

TEST_F(CatalogueCommands, DecodeEmptyInputWithoutAnError) {
    EXPECT_EQ(decode(""), 0);
    EXPECT_THAT(lines_, IsEmpty());
    EXPECT_EQ(errors_, "");
}

} // namespace
