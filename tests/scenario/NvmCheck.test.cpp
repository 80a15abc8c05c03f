// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/OfflineClient.h"
#include "tests/support/wire.h"
#include "tests/testPaths.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace scenario;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::string const routes = R"({"name_":"routes","offset_":4096,"size_":4,"crc_":4065733082,"contents_":"AQIDBA=="})";
std::string const flipped = R"({"name_":"flipped","offset_":1,"size_":4,"crc_":4065733082,"contents_":"AQIDBQ=="})";

class NvmCheck : public OfflineClient {
protected:
    int check(std::string const& file, std::vector<std::string> const& more = {}) {
        std::vector<std::string> arguments{"nvm", "check", file};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
    }
};

TEST_F(NvmCheck, ShowsWhatAGoodBackupHolds) {
    EXPECT_EQ(check(zorv::sourcePath("tests/golden/ManageNvmMsg.json")), 0);
    EXPECT_THAT(lines_, ElementsAre("Result:   success",                            //
                                    "Home id:  c0ffee01",                           //
                                    "Blob      Offset    Size  Checksum  Contents", //
                                    "routes    4096      4     holds     good",     //
                                    "nodes     8192      9     holds     good",     //
                                    "Total               13"));
    EXPECT_EQ(errors_, "");
}

TEST_F(NvmCheck, AcceptsTheExample) { EXPECT_EQ(check(zorv::sourcePath("examples/nvm-backup.json")), 0); }

TEST_F(NvmCheck, FindsAFlippedCharacter) {
    EXPECT_EQ(check(directory_.write("backup.json", "[" + routes + "," + flipped + "]")), 1);
    EXPECT_THAT(lines_, ElementsAre("Result:   success",                            //
                                    "Home id:  00000000",                           //
                                    "Blob      Offset    Size  Checksum  Contents", //
                                    "routes    4096      4     holds     good",     //
                                    "flipped   1         4     differs",            //
                                    "Total               8"));
    EXPECT_EQ(errors_, "quillet: warning: there is no home id\n");
}

TEST_F(NvmCheck, FindsContentsThatCannotBeRestoredUnderAChecksumThatHolds) {
    auto const path = directory_.write(
        "backup.json", R"([{"name_":"digits","offset_":0,"size_":9,"crc_":3421780262,"contents_":"123456789"},)"
                       R"({"name_":"short","offset_":9,"size_":5,"crc_":4065733082,"contents_":"AQIDBA=="}])");
    EXPECT_EQ(check(path), 1);
    EXPECT_THAT(lines_, ElementsAre("Result:   success",                              //
                                    "Home id:  00000000",                             //
                                    "Blob      Offset    Size  Checksum  Contents",   //
                                    "digits    0         9     holds     not base64", //
                                    "short     9         5     holds     4 bytes",    //
                                    "Total               14"));
}

TEST_F(NvmCheck, AcceptsAnEmptyBlob) {
    EXPECT_EQ(
        check(directory_.write("backup.json", R"({"name_":"empty","offset_":0,"size_":0,"crc_":0,"contents_":""})")),
        0);
}

TEST_F(NvmCheck, SaysWhyAFileIsNotABackup) {
    EXPECT_EQ(check(directory_.path("none.json")), 1);
    EXPECT_THAT(lines_, ElementsAre("Result:   fileNotFound", "Home id:  00000000", "Total                   0"));
    EXPECT_EQ(errors_, "quillet: " + directory_.path("none.json") + ": fileNotFound\n");

    EXPECT_EQ(check(directory_.write("backup.json", R"({"homeId_":1})")), 1);
    EXPECT_THAT(lines_, ElementsAre("Result:   noBlobs", "Home id:  00000001", "Total               0"));

    EXPECT_EQ(check(directory_.path()), 1);
    EXPECT_THAT(lines_, ElementsAre("Result:   fileReadFailure", "Home id:  00000000", "Total                      0"));
}

TEST_F(NvmCheck, PrintsOneObjectWithJson) {
    auto const path = directory_.write("backup.json", R"([{"homeId_":5},)" + routes + "," + flipped + "]");
    EXPECT_EQ(check(path, {"--json"}), 1);
    EXPECT_THAT(lines_,
                ElementsAre(R"({"blobs":[{"checksumHolds":true,"good":true,"name":"routes","offset":4096,"size":4},)"
                            R"({"checksumHolds":false,"good":false,"name":"flipped","offset":1,"size":4}],"file":")" +
                            path + R"(","good":false,"homeId":5,"result":"success","size":8,"warnings":[]})"));

    EXPECT_EQ(check(zorv::sourcePath("tests/golden/ManageNvmMsg.json"), {"--json"}), 0);
    EXPECT_THAT(lines_, ElementsAre(HasSubstr(
                            R"("good":true,"homeId":3237998081,"result":"success","size":13,"warnings":[]})")));
}

TEST_F(NvmCheck, ShowsANameThatWouldSteerTheTerminalInHex) {
    auto const path = directory_.write(
        "backup.json", R"({"name_":"\u001b[2J\u009b1A","offset_":0,"size_":0,"crc_":1,"contents_":""})");
    EXPECT_EQ(check(path, {"-v"}), 1);
    EXPECT_THAT(lines_, testing::Contains(R"(\x1b[2J\xc2\x9b1A  0         0     differs)"));
    EXPECT_THAT(errors_, HasSubstr(R"(the blob \x1b[2J\xc2\x9b1A is corrupt)"));
    EXPECT_EQ(check(path, {"--json"}), 1);
    EXPECT_THAT(lines_, ElementsAre(HasSubstr(R"("name":"\u001b[2J\u009b1A")")));
}

/// A backup with this home id and blobs of zeros, each "name", offset, size.
struct Place {
    std::string name;
    unsigned int offset;
    std::size_t size;
};

std::string backupOf(std::vector<Place> const& places, unsigned int homeId = 5) {
    zorv::ManageNvmMsg message(zorv::ManageNvmOp::save, homeId, zorv::ZResult::success, 100);
    for (auto const& place : places) {
        auto const blob = boost::make_shared<zorv::Blob>(place.name, place.offset);
        blob->setContents(zorv::OctetVec(place.size));
        message.addBlob(blob);
    }
    std::ostringstream os;
    message.print(os);
    return os.str();
}

TEST_F(NvmCheck, HasNothingToWarnOfWhereBlobsStandSideBySide) {
    auto const text = backupOf({{"b", 4, 4}, {"a", 0, 4}, {"empty", 2, 0}, {"last", 4294967290U, 6}});
    EXPECT_EQ(check(directory_.write("backup.json", text)), 0);
    EXPECT_EQ(errors_, "");
}

TEST_F(NvmCheck, WarnsOfBlobsThatOverlapAndTakesTheFileForGood) {
    auto const path =
        directory_.write("backup.json", backupOf({{"b", 3, 4}, {"a", 0, 100}, {"c", 99, 1}, {"d", 100, 1}}));
    EXPECT_EQ(check(path), 0);
    EXPECT_EQ(errors_, "quillet: warning: blob \"b\" overlaps \"a\", and 1 more\n");
    EXPECT_EQ(check(path, {"--json"}), 0);
    EXPECT_THAT(lines_, ElementsAre(HasSubstr(R"("good":true,)")));
    EXPECT_THAT(lines_, ElementsAre(HasSubstr(R"("warnings":["blob \"b\" overlaps \"a\", and 1 more"]})")));
}

TEST_F(NvmCheck, WarnsOfABlobThatOverlapsByOneByte) {
    EXPECT_EQ(check(directory_.write("backup.json", backupOf({{"a", 0, 4}, {"b", 3, 4}}))), 0);
    EXPECT_EQ(errors_, "quillet: warning: blob \"b\" overlaps \"a\"\n");
}

TEST_F(NvmCheck, WarnsOfNamesThatComeAgain) {
    EXPECT_EQ(check(directory_.write("backup.json", backupOf({{"a", 0, 4}, {"b", 4, 4}, {"a", 8, 4}}))), 0);
    EXPECT_EQ(errors_, "quillet: warning: blob \"a\" comes again\n");
}

TEST_F(NvmCheck, WarnsOfABlobThatEndsBehindTheLastPlace) {
    EXPECT_EQ(check(directory_.write("backup.json", backupOf({{"a", 4294967290U, 7}}))), 0);
    EXPECT_EQ(errors_, "quillet: warning: blob \"a\" ends behind byte 4294967295\n");
}

TEST_F(NvmCheck, WarnsThatThereIsNoHomeId) {
    EXPECT_EQ(check(directory_.write("backup.json", backupOf({{"a", 0, 4}}, 0))), 0);
    EXPECT_EQ(errors_, "quillet: warning: there is no home id\n");
}

TEST_F(NvmCheck, WarnsOfANameThatIsNotUtf8) {
    auto text = backupOf({{"name", 0, 4}});
    text.replace(text.find("name\""), 1, "\xff");
    EXPECT_EQ(check(directory_.write("backup.json", text)), 0);
    EXPECT_EQ(errors_, "quillet: warning: blob \"\\xffame\" is not UTF-8\n");
}

// The checksum differs, so that the contents need not be base64 and are not decoded.
TEST_F(NvmCheck, WarnsOfABackupThatDoesNotFitIntoOneLine) {
    auto const blobOf = [](std::string const& contents) {
        return R"({"__name__":"zorv::Blob","name_":"a","offset_":0,"size_":1,"crc_":1,"contents_":")" + contents +
               "\"}";
    };
    zorv::ManageNvmMsg request(zorv::ManageNvmOp::restore, 5, zorv::ZResult::none, 0);
    request.addBlob(zorv::readBack<zorv::Blob>(blobOf("")));
    auto const room = 8388608 - toText(request).size();
    auto const errorsOf = [&](std::size_t contents) {
        auto const text = R"([{"homeId_":5},)" + blobOf(std::string(contents, 'A')) + "]";
        EXPECT_EQ(check(directory_.write("backup.json", text)), 1);
        return errors_;
    };
    EXPECT_THAT(errorsOf(room), Not(HasSubstr("warning")));
    EXPECT_THAT(errorsOf(room + 1), HasSubstr("quillet: warning: the request for a restore has 8388609 bytes, "
                                              "the daemon takes 8388608 by default\n"));
}

TEST_F(NvmCheck, NeedsAFile) {
    EXPECT_EQ(Process({zorv::programPath("quillet"), "nvm", "check"}).wait(), 2);
    EXPECT_EQ(Process({zorv::programPath("quillet"), "nvm"}).wait(), 2);
}

} // namespace
