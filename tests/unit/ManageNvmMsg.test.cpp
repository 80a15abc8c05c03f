// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ManageNvmMsg.h"

#include "platform/libtransport/throwInvalidEnum.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/errorOf.h"
#include "tests/support/expectTexts.h"
#include "tests/support/golden.h"
#include "tests/support/inChildProcess.h"
#include "tests/support/wire.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/make_shared.hpp>
#include <json/reader.h>
#include <json/value.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <fstream>
#include <new>
#include <sstream>
#include <string>
#include <thread>

namespace zorv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

boost::shared_ptr<Blob> makeBlob(std::string const& name, OctetVec const& bytes) {
    auto blob = boost::make_shared<Blob>(name, 0U);
    EXPECT_FALSE(blob->setContents(bytes));
    return blob;
}

std::string const goodBlob = R"({"name_":"routes","offset_":4096,"size_":4,"crc_":4065733082,"contents_":"AQIDBA=="})";
std::string const otherBlob = R"({"name_":"nodes","offset_":8192,"size_":9,"crc_":4039424006,)"
                              R"("contents_":"cXVpbGxldAD/"})";

// ---- the message

TEST(ManageNvmOp, HasItsTexts) {
    expectTexts<ManageNvmOp::Enum>({"invalid", "save", "restore", "clear", "validate", "authorize"});
}

TEST(ManageNvmOp, HasNoTextOrValueBeyondThem) {
    EXPECT_EQ(errorOf([] { ManageNvmOp::toEnum("none"); }), "InvalidEnumError: invalid ManageNvmOp text \"none\"");
    EXPECT_EQ(errorOf([] { toString(ManageNvmOp::Enum(6)); }), "InvalidEnumError: invalid ManageNvmOp value 6");
}

TEST(ManageNvmMsg, HasATimeoutOf180) { EXPECT_EQ(ManageNvmMsg::DEFAULT_TIMEOUT, 180U); }

TEST(ManageNvmMsg, HasTheDefaultsOfItsMembers) {
    ManageNvmMsg const message;
    EXPECT_EQ(message.result(), ZResult::none);
    EXPECT_EQ(message.operation(), ManageNvmOp::invalid);
    EXPECT_EQ(message.homeId(), 0U);
    EXPECT_EQ(message.timeout(), 180U);
    EXPECT_EQ(message.percentComplete(), 0U);
    EXPECT_THAT(message.blobs(), IsEmpty());
}

TEST(ManageNvmMsg, TakesItsMembersAtOnceButNoTimeoutAndNoBlobs) {
    ManageNvmMsg const message(ManageNvmOp::validate, 0xC0FFEE01, ZResult::failure, 42);
    EXPECT_EQ(message.operation(), ManageNvmOp::validate);
    EXPECT_EQ(message.homeId(), 0xC0FFEE01);
    EXPECT_EQ(message.result(), ZResult::failure);
    EXPECT_EQ(message.percentComplete(), 42U);
    EXPECT_EQ(message.timeout(), 180U);
    EXPECT_THAT(message.blobs(), IsEmpty());
}

TEST(ManageNvmMsg, RequestCarriesItsOperationOnly) {
    auto const request = ManageNvmMsg::create(ManageNvmOp::save);
    EXPECT_EQ(ownMembers<Confirmable>(*request),
              R"(,"operation_":"save","homeId_":0,"timeout_":180,"percentComplete_":0,"blobs_":[]})");
    EXPECT_EQ(request->result(), ZResult::none);
    EXPECT_EQ(request->role(), MessageRole::none);
}

TEST(ManageNvmMsg, IsChangedByItsSetters) {
    ManageNvmMsg message;
    message.operation(ManageNvmOp::authorize);
    message.timeout(7);
    message.percentComplete(8);
    EXPECT_EQ(ownMembers<Confirmable>(message),
              R"(,"operation_":"authorize","homeId_":0,"timeout_":7,"percentComplete_":8,"blobs_":[]})");
}

TEST(ManageNvmMsg, ResponseAnswersItsRequestWithoutItsBlobsAndItsTimeout) {
    auto const request = boost::make_shared<ManageNvmMsg>(ManageNvmOp::restore, 0xC0FFEE01, ZResult::none, 3U);
    request->addBlob(makeBlob("routes", {1, 2, 3, 4}));
    request->timeout(7);
    request->source({boost::asio::ip::address_v4(0xC0000207), 4711});
    auto const response = ManageNvmMsg::create(request, ZResult::inProgress, 42);
    EXPECT_EQ(ownMembers<Confirmable>(*response),
              R"(,"operation_":"restore","homeId_":3237998081,"timeout_":180,"percentComplete_":42,"blobs_":[]})");
    EXPECT_EQ(response->result(), ZResult::inProgress);
    EXPECT_EQ(response->correlation(), request->id());
    EXPECT_EQ(response->source(), request->source());
}

TEST(ManageNvmMsg, RefusesToRespondToANullRequest) {
    boost::shared_ptr<ManageNvmMsg> const none;
    EXPECT_EQ(errorOf([&] { ManageNvmMsg::create(none, ZResult::success, 0); }), "NullPointerError: msg is null");
}

TEST(ManageNvmMsg, CopySharesTheBlobs) {
    ManageNvmMsg message;
    message.addBlob(makeBlob("routes", {1}));
    auto const copy = boost::dynamic_pointer_cast<ManageNvmMsg>(message.clone());
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->blobs(), message.blobs()); // the same pointers
}

TEST(ManageNvmMsg, MayCarryAnEmptyPointerAmongItsBlobs) {
    ManageNvmMsg message;
    message.addBlob(nullptr);
    message.addBlob(boost::make_shared<Blob>("a", 1, 2, 3, "b"));
    auto const again = readBack<ManageNvmMsg>(toText(message));
    ASSERT_TRUE(again);
    ASSERT_EQ(again->blobs().size(), 2U);
    EXPECT_FALSE(again->blobs()[0]);
    EXPECT_EQ(again->blobs()[1]->name(), "a");
    EXPECT_EQ(toText(*again), toText(message));
}

TEST(ManageNvmMsg, CannotBeReadWithBlobsThatAreNoList) {
    EXPECT_EQ(errorOf([] { readBack<ManageNvmMsg>(R"({"__name__":"zorv::ManageNvmMsg","blobs_":{}})"); }),
              "SyntaxError: expected array, got object");
}

TEST(ManageNvmMsg, CannotBeReadWithAnUnknownOperation) {
    EXPECT_EQ(errorOf([] { readBack<ManageNvmMsg>(R"({"__name__":"zorv::ManageNvmMsg","operation_":"none"})"); }),
              "InvalidEnumError: operation_: invalid ManageNvmOp text \"none\"");
}

TEST(ManageNvmMsg, CannotBeWrittenWithAnUnknownOperation) {
    auto const message = ManageNvmMsg::create(ManageNvmOp::Enum(6));
    EXPECT_EQ(errorOf([&] { toText(*message); }), "InvalidEnumError: invalid ManageNvmOp value 6");
}

TEST(ManageNvmMsg, SumsTheSizesOfItsBlobs) {
    ManageNvmMsg message;
    EXPECT_EQ(message.size(), 0U);
    message.addBlob(makeBlob("routes", {1, 2, 3, 4}));
    message.addBlob(boost::make_shared<Blob>("claims", 0, 38, 0, ""));
    EXPECT_EQ(message.size(), 42U);
}

TEST(ManageNvmMsg, SumsSizesBeyond32Bits) {
    ManageNvmMsg message;
    message.addBlob(boost::make_shared<Blob>("a", 0, 4294967295U, 0, ""));
    message.addBlob(boost::make_shared<Blob>("b", 0, 4294967295U, 0, ""));
    EXPECT_EQ(message.size(), 8589934590U);
}

TEST(ManageNvmMsg, WithoutBlobsHasNoCorruptOne) { EXPECT_TRUE(ManageNvmMsg().checkBlobs()); }

TEST(ManageNvmMsg, FindsAllChecksumsHoldInItsGoldenText) {
    LogCapture const log;
    auto const message = readBack<ManageNvmMsg>(golden("ManageNvmMsg"));
    ASSERT_EQ(message->blobs().size(), 2U);
    EXPECT_TRUE(message->checkBlobs());
    EXPECT_EQ(message->size(), 13U);
    EXPECT_EQ(message->blobs()[1]->getContents(), (OctetVec{'q', 'u', 'i', 'l', 'l', 'e', 't', 0, 255}));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(ManageNvmMsg, StopsCheckingAtTheFirstCorruptBlob) {
    ManageNvmMsg message;
    message.addBlob(makeBlob("good", {1}));
    message.addBlob(boost::make_shared<Blob>("bad", 0, 0, 1, ""));
    message.addBlob(boost::make_shared<Blob>("worse", 0, 0, 2, ""));
    LogCapture const log;
    EXPECT_FALSE(message.checkBlobs());
    EXPECT_THAT(log.lines(), ElementsAre("WARN ManageNvmMsg::checkCrc: crc mismatch, the blob bad is corrupt"));
}

TEST(ManageNvmMsg, FindsEveryFlippedBitOfEveryCharacterOfABackup) {
    BlobVec const blobs = {makeBlob("header", {0x5A, 0x57}), makeBlob("routes", OctetVec(57, 0x00)),
                           makeBlob("nodes", {'q', 'u', 'i', 'l', 'l', 'e', 't', 0, 255})};
    auto const checkWith = [&](std::size_t changed, std::string const& contents) {
        ManageNvmMsg message;
        for (std::size_t i = 0; i < blobs.size(); ++i) {
            auto const& blob = *blobs[i];
            message.addBlob(boost::make_shared<Blob>(blob.name(), blob.offset(), blob.size(), blob.crc(),
                                                     i == changed ? contents : blob.contents()));
        }
        return message.checkBlobs();
    };
    LogCapture const log; // keeps some thousand lines together
    int checked = 0;
    for (std::size_t i = 0; i < blobs.size(); ++i) {
        auto const& contents = blobs[i]->contents();
        ASSERT_TRUE(checkWith(i, contents));
        for (std::size_t at = 0; at < contents.size(); ++at) {
            for (unsigned int bit = 0; bit < 8; ++bit) {
                auto flipped = contents;
                flipped[at] = static_cast<char>(static_cast<unsigned char>(flipped[at]) ^ (1U << bit));
                ASSERT_FALSE(checkWith(i, flipped)) << "bit " << bit << " of character " << at << " of blob " << i;
                ++checked;
            }
        }
    }
    EXPECT_EQ(checked, 8 * (4 + 76 + 12));
}

TEST(ManageNvmMsg, ShowsItsHomeIdInDecimalAndItsResult) {
    ManageNvmMsg const message(ManageNvmOp::save, 0xC0FFEE01, ZResult::noBlobs, 42);
    StringVecVec rows;
    message.accumulateDisplay(rows);
    EXPECT_EQ(rows, (StringVecVec{{"Manage NVM"}, {"Home id:", "3237998081"}, {"Result:", "noBlobs"}}));
}

// ---- the search for blobs

/// JsonCpp's own text for a call that fails.
template <class Call> std::string wordsOfJsonCpp(Call const& call) {
    try {
        call();
    } catch (Json::Exception const& error) { return error.what(); }
    return "no error";
}

Json::Value parsed(std::string const& text) {
    std::istringstream is(text);
    Json::Value value;
    is >> value;
    return value;
}

std::string const noNumber = wordsOfJsonCpp([] { return Json::Value("c0ffee01").asUInt(); });
std::string const noString = wordsOfJsonCpp([] { return Json::Value(Json::arrayValue).asString(); });

HomeId find(Json::Value value, BlobVec& blobs) { return ManageNvmMsg::findBlobs(value, blobs); }

HomeId findHomeId(Json::Value const& value) {
    BlobVec blobs;
    return find(value, blobs);
}

Json::Value network(unsigned int homeId) {
    Json::Value value;
    value["homeId_"] = homeId;
    return value;
}

Json::Value list(std::initializer_list<Json::Value> elements) {
    Json::Value value(Json::arrayValue);
    for (auto const& element : elements) { value.append(element); }
    return value;
}

Json::Value blobValue(std::string const& name) {
    Json::Value value;
    value["name_"] = name;
    value["offset_"] = 4096;
    value["size_"] = 4;
    value["crc_"] = 4065733082U;
    value["contents_"] = "AQIDBA==";
    return value;
}

std::string const preferring =
    "WARN ManageNvmMsg::findBlobs: multiple, different home ids in the nvm file, preferring ";

TEST(FindBlobs, TakesNothingFromValuesThatAreNeitherObjectNorList) {
    BlobVec blobs;
    for (auto const& value : {Json::Value(7), Json::Value("homeId_"), Json::Value(true), Json::Value()}) {
        EXPECT_EQ(find(value, blobs), 0U);
    }
    EXPECT_THAT(blobs, IsEmpty());
}

TEST(FindBlobs, TakesABlobWithAllItsMembers) {
    BlobVec blobs;
    EXPECT_EQ(find(blobValue("routes"), blobs), 0U);
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0]->name(), "routes");
    EXPECT_EQ(blobs[0]->offset(), 4096U);
    EXPECT_EQ(blobs[0]->size(), 4U);
    EXPECT_EQ(blobs[0]->crc(), 4065733082U);
    EXPECT_EQ(blobs[0]->contents(), "AQIDBA==");
}

TEST(FindBlobs, AppendsToTheBlobsThatWereThere) {
    BlobVec blobs = {boost::make_shared<Blob>("first", 0)};
    find(list({blobValue("second"), blobValue("third")}), blobs);
    ASSERT_EQ(blobs.size(), 3U);
    EXPECT_EQ(blobs[1]->name(), "second");
    EXPECT_EQ(blobs[2]->name(), "third");
}

TEST(FindBlobs, NeedsEachOfTheFiveMembers) {
    for (auto const* const key : {"name_", "offset_", "size_", "crc_", "contents_"}) {
        auto value = blobValue("routes");
        value.removeMember(key);
        BlobVec blobs;
        find(value, blobs);
        EXPECT_THAT(blobs, IsEmpty()) << key;
    }
}

TEST(FindBlobs, FindsBlobsHoweverDeepTheyStand) {
    Json::Value value;
    value["a"]["b"] = list({list({blobValue("deep")}), blobValue("less deep")});
    BlobVec blobs;
    find(value, blobs);
    ASSERT_EQ(blobs.size(), 2U);
    EXPECT_EQ(blobs[0]->name(), "deep");
    EXPECT_EQ(blobs[1]->name(), "less deep");
}

TEST(FindBlobs, DoesNotSearchInsideABlob) {
    auto value = blobValue("outer");
    value["more"] = blobValue("inner");
    value["network"] = network(5);
    BlobVec blobs;
    EXPECT_EQ(find(value, blobs), 0U);
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0]->name(), "outer");
}

TEST(FindBlobs, IgnoresTheHomeIdOfABlob) {
    auto value = blobValue("routes");
    value["homeId_"] = 5;
    LogCapture const log;
    EXPECT_EQ(findHomeId(list({network(6), value})), 6U);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(FindBlobs, TakesTheHomeIdOfAnObject) { EXPECT_EQ(findHomeId(network(0xC0FFEE01)), 0xC0FFEE01); }

TEST(FindBlobs, PrefersTheLaterOfTwoHomeIdsInAList) {
    LogCapture log;
    EXPECT_EQ(findHomeId(list({network(5), network(6)})), 6U);
    EXPECT_THAT(log.lines(), ElementsAre(preferring + "6"));
    log.clear();
    EXPECT_EQ(findHomeId(list({network(6), network(5)})), 5U);
    EXPECT_THAT(log.lines(), ElementsAre(preferring + "5"));
}

TEST(FindBlobs, PrefersTheLaterOfTwoHomeIdsInTheOrderOfMemberNames) {
    Json::Value value;
    value["b"] = network(5);
    value["a"] = network(6);
    LogCapture log;
    EXPECT_EQ(findHomeId(value), 5U);
    EXPECT_THAT(log.lines(), ElementsAre(preferring + "5"));
    log.clear();
    value["c"] = network(7);
    EXPECT_EQ(findHomeId(value), 7U);
    EXPECT_THAT(log.lines(), ElementsAre(preferring + "5", preferring + "7"));
}

TEST(FindBlobs, PrefersTheDeeperHomeId) {
    auto value = network(5);
    value["a"] = network(6);
    LogCapture const log;
    EXPECT_EQ(findHomeId(value), 6U);
    EXPECT_THAT(log.lines(), ElementsAre(preferring + "6"));
}

TEST(FindBlobs, WarnsOncePerChangeOfThreeHomeIds) {
    LogCapture log;
    EXPECT_EQ(findHomeId(list({network(5), network(6), network(7)})), 7U);
    EXPECT_THAT(log.lines(), ElementsAre(preferring + "6", preferring + "7"));
    log.clear();
    EXPECT_EQ(findHomeId(list({network(7), network(6), network(5)})), 5U);
    EXPECT_THAT(log.lines(), ElementsAre(preferring + "6", preferring + "5"));
    log.clear();
    EXPECT_EQ(findHomeId(list({network(5), network(6), network(6)})), 6U);
    EXPECT_THAT(log.lines(), ElementsAre(preferring + "6"));
    log.clear();
    EXPECT_EQ(findHomeId(list({network(5), network(6), network(5)})), 5U);
    EXPECT_THAT(log.lines(), ElementsAre(preferring + "6", preferring + "5"));
}

TEST(FindBlobs, DoesNotWarnOfEqualHomeIdsOrOfNone) {
    LogCapture const log;
    EXPECT_EQ(findHomeId(list({network(0), network(5), network(5), network(0)})), 5U);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(FindBlobs, RefusesAHomeIdThatIsNoNumber) {
    Json::Value value;
    value["homeId_"] = "c0ffee01";
    EXPECT_EQ(errorOf([&] { findHomeId(value); }), "Json::LogicError: " + noNumber);
}

// ---- the backup file

class ReadBackup : public testing::Test {
protected:
    /// Reads a file with this text.
    ZResult::Enum read(std::string const& text) { return message_.read(directory_.write("backup.json", text)); }

    std::vector<std::string> blobNames() const {
        std::vector<std::string> names;
        for (auto const& blob : message_.blobs()) { names.push_back(blob->name()); }
        return names;
    }

    TemporaryDirectory directory_;
    LogCapture log_;
    ManageNvmMsg message_;
};

std::string const cannotParse = "WARN ManageNvmMsg::read: cannot parse object, ";

TEST_F(ReadBackup, TakesBlobsAndHomeIdFromAWholeMessage) {
    EXPECT_EQ(read(golden("ManageNvmMsg") + "\n"), ZResult::Enum(1));
    EXPECT_THAT(blobNames(), ElementsAre("routes", "nodes"));
    EXPECT_EQ(message_.homeId(), 3237998081U);
    EXPECT_TRUE(message_.checkBlobs());
    EXPECT_EQ(message_.size(), 13U);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ReadBackup, TakesNothingElseFromAWholeMessage) {
    read(golden("ManageNvmMsg"));
    EXPECT_EQ(message_.operation(), ManageNvmOp::invalid);
    EXPECT_EQ(message_.timeout(), 180U);
    EXPECT_EQ(message_.percentComplete(), 0U);
    EXPECT_EQ(message_.result(), ZResult::none);
}

TEST_F(ReadBackup, TakesBlobsFromABareList) {
    EXPECT_EQ(read("[" + goodBlob + "," + otherBlob + "]"), ZResult::success);
    EXPECT_THAT(blobNames(), ElementsAre("routes", "nodes"));
    EXPECT_EQ(message_.homeId(), 0U);
    EXPECT_TRUE(message_.checkBlobs());
}

TEST_F(ReadBackup, TakesALoneBlob) {
    EXPECT_EQ(read(otherBlob), ZResult::success);
    EXPECT_THAT(blobNames(), ElementsAre("nodes"));
}

TEST_F(ReadBackup, TakesBlobsFromNestedDocuments) {
    EXPECT_EQ(
        read(R"({"backups":[{"network":{"homeId_":5,"areas":[[)" + goodBlob + R"(]]}},{"more":)" + otherBlob + "}]}"),
        ZResult::success);
    EXPECT_THAT(blobNames(), ElementsAre("routes", "nodes"));
    EXPECT_EQ(message_.homeId(), 5U);
}

TEST_F(ReadBackup, ReplacesWhatTheMessageHeld) {
    read(R"([{"homeId_":5},)" + goodBlob + "]");
    EXPECT_EQ(read("[" + otherBlob + "]"), ZResult::success);
    EXPECT_THAT(blobNames(), ElementsAre("nodes"));
    EXPECT_EQ(message_.homeId(), 0U);
}

TEST_F(ReadBackup, DoesNotCheckChecksums) {
    EXPECT_EQ(read(R"({"name_":"routes","offset_":0,"size_":0,"crc_":1,"contents_":"AQIDBA=="})"), ZResult::success);
    EXPECT_THAT(log_.lines(), IsEmpty());
    EXPECT_FALSE(message_.checkBlobs());
}

TEST_F(ReadBackup, OfAMissingFileFailsWith6) {
    auto const path = directory_.path("none.json");
    EXPECT_EQ(message_.read(path), ZResult::Enum(6));
    EXPECT_THAT(log_.lines(), ElementsAre("WARN ManageNvmMsg::read: input file does not exist " + path));
}

TEST_F(ReadBackup, OfAnythingThatHasNoStatusFailsWith6) {
    auto const loop = directory_.path("loop");
    ASSERT_EQ(::symlink(loop.c_str(), loop.c_str()), 0);
    auto const dangling = directory_.path("dangling");
    ASSERT_EQ(::symlink("none.json", dangling.c_str()), 0);
    auto const insideAFile = directory_.write("file", "[]") + "/backup.json";
    for (auto const& path : {std::string(), loop, dangling, insideAFile, std::string(300, 'x')}) {
        log_.clear();
        EXPECT_EQ(message_.read(path), ZResult::fileNotFound) << path;
        EXPECT_THAT(log_.lines(), ElementsAre("WARN ManageNvmMsg::read: input file does not exist " + path));
    }
}

TEST_F(ReadBackup, OfASocketFailsWith7) {
    auto const path = directory_.path("socket");
    boost::asio::io_context context;
    boost::asio::local::stream_protocol::acceptor const acceptor(context,
                                                                 boost::asio::local::stream_protocol::endpoint(path));
    EXPECT_EQ(message_.read(path), ZResult::Enum(7));
    EXPECT_THAT(log_.lines(), ElementsAre("WARN ManageNvmMsg::read: cannot open input file " + path));
}

TEST_F(ReadBackup, OfAnUnreadableFileFailsWith7) {
    auto const path = directory_.write("backup.json", "[" + goodBlob + "]");
    ASSERT_EQ(::chmod(path.c_str(), 0), 0);
    // A file that nobody may read is still open to root.
    auto const report = inChildProcess([&] {
        uid_t const nobody = 65534;
        if (::geteuid() == 0 && ::setresuid(nobody, nobody, nobody) != 0) { return std::string("cannot give up root"); }
        auto const result = message_.read(path);
        return toString(result) + '\n' + (log_.lines().empty() ? "" : log_.lines().back());
    });
    EXPECT_EQ(report, "fileOpenFailure\nWARN ManageNvmMsg::read: cannot open input file " + path);
}

TEST_F(ReadBackup, OfADirectoryFailsWith8) {
    EXPECT_EQ(message_.read(directory_.path()), ZResult::Enum(8));
    EXPECT_THAT(log_.lines(), ElementsAre("WARN ManageNvmMsg::read: cannot read input file " + directory_.path()));
}

TEST_F(ReadBackup, OfAnEmptyFileFailsWith9) {
    EXPECT_EQ(read(""), ZResult::Enum(9));
    EXPECT_THAT(log_.lines(), ElementsAre(cannotParse + wordsOfJsonCpp([] { parsed(""); })));
}

TEST_F(ReadBackup, OfNothingButLineEndsFailsWith9) {
    EXPECT_EQ(read("\n\n\n"), ZResult::noBlobs);
    EXPECT_THAT(log_.lines(), ElementsAre(StartsWith(cannotParse)));
}

TEST_F(ReadBackup, OfMalformedJsonFailsWith9) {
    EXPECT_EQ(read("[" + goodBlob), ZResult::Enum(9));
    EXPECT_THAT(log_.lines(), ElementsAre(cannotParse + wordsOfJsonCpp([] { parsed("[" + goodBlob); })));
}

TEST_F(ReadBackup, OfMalformedJsonLeavesTheMessageAsItIs) {
    read(R"([{"homeId_":5},)" + goodBlob + "]");
    read("[");
    EXPECT_THAT(blobNames(), ElementsAre("routes"));
    EXPECT_EQ(message_.homeId(), 5U);
}

TEST_F(ReadBackup, ThatCannotBeReadLeavesTheMessageAsItIs) {
    read(R"([{"homeId_":5},)" + goodBlob + "]");
    message_.read(directory_.path("none.json"));
    message_.read(directory_.path());
    EXPECT_THAT(blobNames(), ElementsAre("routes"));
    EXPECT_EQ(message_.homeId(), 5U);
}

TEST_F(ReadBackup, OfJsonWithoutBlobsGives9AndHomeId0WithoutALogLine) {
    for (auto const* const text : {"[]", "{}", "7", "\"blobs\"", "null", R"({"name_":"routes","size_":4})"}) {
        read(R"([{"homeId_":5},)" + goodBlob + "]");
        EXPECT_EQ(read(text), ZResult::Enum(9)) << text;
        EXPECT_EQ(message_.homeId(), 0U) << text;
        EXPECT_THAT(message_.blobs(), IsEmpty()) << text;
        EXPECT_THAT(log_.lines(), IsEmpty()) << text;
    }
}

TEST_F(ReadBackup, OfJsonWithoutBlobsTakesTheHomeIdAllTheSame) {
    EXPECT_EQ(read(R"({"homeId_":3237998081,"blobs_":[]})"), ZResult::noBlobs);
    EXPECT_EQ(message_.homeId(), 3237998081U);
}

TEST_F(ReadBackup, PrefersTheLaterHomeIdInTheOrderOfMemberNames) {
    EXPECT_EQ(read(R"({"b":{"homeId_":5},"a":{"homeId_":6},"blobs":[)" + goodBlob + "]}"), ZResult::success);
    EXPECT_EQ(message_.homeId(), 5U);
    EXPECT_THAT(log_.lines(), ElementsAre(preferring + "5"));
}

TEST_F(ReadBackup, PrefersTheLastOfTwoOrThreeHomeIdsInWhateverOrder) {
    auto const readIds = [this](std::vector<std::string> const& ids) {
        std::string text = "[" + goodBlob;
        for (auto const& id : ids) { text += R"(,{"homeId_":)" + id + "}"; }
        log_.clear();
        EXPECT_EQ(read(text + "]"), ZResult::success);
        return message_.homeId();
    };
    EXPECT_EQ(readIds({"5", "6"}), 6U);
    EXPECT_THAT(log_.lines(), ElementsAre(preferring + "6"));
    EXPECT_EQ(readIds({"6", "5"}), 5U);
    EXPECT_THAT(log_.lines(), ElementsAre(preferring + "5"));
    EXPECT_EQ(readIds({"5", "6", "4294967295"}), 4294967295U);
    EXPECT_THAT(log_.lines(), ElementsAre(preferring + "6", preferring + "4294967295"));
    EXPECT_EQ(readIds({"4294967295", "6", "5"}), 5U);
    EXPECT_THAT(log_.lines(), ElementsAre(preferring + "6", preferring + "5"));
}

TEST_F(ReadBackup, IgnoresTheHomeIdOfABlob) {
    EXPECT_EQ(read(R"([{"homeId_":6},{"homeId_":5,)" + goodBlob.substr(1) + "]"), ZResult::success);
    EXPECT_EQ(message_.homeId(), 6U);
    EXPECT_THAT(blobNames(), ElementsAre("routes"));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ReadBackup, StopsAtAMemberOfTheWrongTypeAndLeavesTheHomeIdUnchanged) {
    std::string const wrong = R"({"name_":"wrong","offset_":0,"size_":"4","crc_":0,"contents_":""})";
    read(R"([{"homeId_":5},)" + goodBlob + "]");
    EXPECT_EQ(read(R"([{"homeId_":6},)" + wrong + "," + otherBlob + "]"), ZResult::Enum(9));
    EXPECT_THAT(log_.lines(), ElementsAre(cannotParse + noNumber));
    EXPECT_THAT(message_.blobs(), IsEmpty());
    EXPECT_EQ(message_.homeId(), 5U);

    log_.clear();
    EXPECT_EQ(read(R"([{"homeId_":6},)" + otherBlob + "," + wrong + "]"), ZResult::Enum(9));
    EXPECT_THAT(log_.lines(), ElementsAre(cannotParse + noNumber));
    EXPECT_THAT(blobNames(), ElementsAre("nodes"));
    EXPECT_EQ(message_.homeId(), 5U);
}

TEST_F(ReadBackup, RefusesEachMemberThatDoesNotConvert) {
    struct {
        char const* members;
        std::string complaint;
    } const cases[] = {
        {R"("name_":[],"offset_":0,"size_":0,"crc_":0,"contents_":"")", noString},
        {R"("name_":"","offset_":{},"size_":0,"crc_":0,"contents_":"")", noNumber},
        {R"("name_":"","offset_":0,"size_":[],"crc_":0,"contents_":"")", noNumber},
        {R"("name_":"","offset_":0,"size_":0,"crc_":"0","contents_":"")", noNumber},
        {R"("name_":"","offset_":0,"size_":0,"crc_":0,"contents_":{})", noString},
        {R"("homeId_":"5")", noNumber},
    };
    for (auto const& c : cases) {
        log_.clear();
        EXPECT_EQ(read(std::string("{") + c.members + "}"), ZResult::noBlobs) << c.members;
        EXPECT_THAT(log_.lines(), ElementsAre(cannotParse + c.complaint)) << c.members;
    }
}

TEST_F(ReadBackup, RefusesNumbersOutOfRange) {
    for (auto const* const number : {"-1", "4294967296", "18446744073709551616", "1e20", "-0.5e10"}) {
        auto const complaint = wordsOfJsonCpp([&] { return parsed(number).asUInt(); });
        for (auto const* const key : {"offset_", "size_", "crc_"}) {
            auto text = goodBlob;
            auto const at = text.find(key) + std::string(key).size() + 2;
            text.replace(at, text.find(',', at) - at, number);
            log_.clear();
            EXPECT_EQ(read(text), ZResult::noBlobs) << text;
            EXPECT_THAT(log_.lines(), ElementsAre(cannotParse + complaint)) << text;
        }
    }
}

TEST_F(ReadBackup, TakesWhatTheJsonLibraryConverts) {
    EXPECT_EQ(read(R"({"name_":7,"offset_":1.5,"size_":true,"crc_":null,"contents_":null})"), ZResult::success);
    auto const& blob = *message_.blobs().at(0);
    EXPECT_EQ(blob.name(), "7");
    EXPECT_EQ(blob.offset(), 1U);
    EXPECT_EQ(blob.size(), 1U);
    EXPECT_EQ(blob.crc(), 0U);
    EXPECT_EQ(blob.contents(), "");
}

TEST_F(ReadBackup, JoinsLinesWithoutTheirEnds) {
    auto text = goodBlob;
    text.insert(text.find("BA=="), "\n"); // valid JSON only once the lines are joined
    EXPECT_EQ(read("[\n" + text + "\n]\n"), ZResult::success);
    EXPECT_EQ(message_.blobs().at(0)->contents(), "AQIDBA==");
    EXPECT_TRUE(message_.checkBlobs());
}

TEST_F(ReadBackup, JoinsLinesAcrossAllItsBlocks) {
    ManageNvmMsg saved;
    saved.addBlob(makeBlob("eeprom", OctetVec(300'000, 0xA5)));
    auto const text = toText(saved);
    std::string lines;
    for (std::size_t at = 0; at < text.size(); at += 77) { lines += text.substr(at, 77) + '\n'; }
    EXPECT_EQ(read(lines), ZResult::success);
    EXPECT_TRUE(message_.checkBlobs());
    EXPECT_EQ(message_.size(), 300'000U);
}

TEST_F(ReadBackup, ReadsWindowsLineEnds) {
    EXPECT_EQ(read("[\r\n  " + goodBlob + ",\r\n  " + otherBlob + "\r\n]\r\n"), ZResult::success);
    EXPECT_THAT(blobNames(), ElementsAre("routes", "nodes"));
    EXPECT_TRUE(message_.checkBlobs());
}

TEST_F(ReadBackup, LosesEverythingBehindACommentToItsLineEnd) {
    EXPECT_EQ(read("// made by hand\n[" + goodBlob + "]"), ZResult::Enum(9));
    EXPECT_THAT(log_.lines(), ElementsAre(StartsWith(cannotParse)));

    log_.clear();
    EXPECT_EQ(read("[" + goodBlob + "\n// the rest is lost\n," + otherBlob + "]"), ZResult::Enum(9));
    EXPECT_THAT(log_.lines(), ElementsAre(StartsWith(cannotParse)));
}

TEST_F(ReadBackup, ReadsOtherComments) {
    EXPECT_EQ(read("/* made\nby hand */ [" + goodBlob + "]\n// the end\n"), ZResult::success);
    EXPECT_THAT(blobNames(), ElementsAre("routes"));
    EXPECT_EQ(read("// a carriage return ends a comment as well\r\n[" + otherBlob + "]\r\n"), ZResult::success);
    EXPECT_THAT(blobNames(), ElementsAre("nodes"));
}

std::string nested(std::size_t levels, std::string const& inner) {
    return std::string(levels, '[') + inner + std::string(levels, ']');
}

TEST_F(ReadBackup, ReadsFiveLevelsOfNesting) {
    EXPECT_EQ(read(nested(5, goodBlob)), ZResult::success);
    EXPECT_THAT(blobNames(), ElementsAre("routes"));
}

TEST_F(ReadBackup, RefusesFiveThousandLevelsOfNesting) {
    read("[" + goodBlob + "]");
    EXPECT_EQ(read(nested(5000, goodBlob)), ZResult::Enum(9));
    EXPECT_THAT(log_.lines(), ElementsAre(cannotParse + wordsOfJsonCpp([] { parsed(nested(5000, goodBlob)); })));

    std::string objects;
    for (int i = 0; i < 5000; ++i) { objects += R"({"a":)"; }
    EXPECT_EQ(read(objects + "1" + std::string(5000, '}')), ZResult::Enum(9));
}

TEST_F(ReadBackup, OfAFifoWithoutAWriterFailsWith9InsteadOfWaiting) {
    auto const path = directory_.path("fifo");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(message_.read(path), ZResult::noBlobs);
    EXPECT_THAT(log_.lines(), ElementsAre(StartsWith(cannotParse)));
}

TEST_F(ReadBackup, OfAPipeWaitsForItsWriter) {
    ManageNvmMsg saved;
    saved.addBlob(makeBlob("eeprom", OctetVec(1'000'000, 0x5A))); // many times what a pipe holds
    auto const text = toText(saved);
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    bool written = true;
    std::thread writer([&] {
        for (std::size_t at = 0; at < text.size() && written; at += 1000) {
            auto const part = text.substr(at, 1000);
            written = ::write(ends[1], part.data(), part.size()) == static_cast<ssize_t>(part.size());
        }
        ::close(ends[1]);
    });
    EXPECT_EQ(message_.read("/dev/fd/" + std::to_string(ends[0])), ZResult::success);
    std::signal(SIGPIPE, SIG_IGN);
    ::close(ends[0]); // ends a writer that is still writing
    writer.join();
    EXPECT_TRUE(written);
    EXPECT_EQ(message_.size(), 1'000'000U);
    EXPECT_TRUE(message_.checkBlobs());
}

TEST_F(ReadBackup, OfTheNullDeviceFailsWith9) {
    EXPECT_EQ(message_.read("/dev/null"), ZResult::Enum(9));
    EXPECT_THAT(log_.lines(), ElementsAre(StartsWith(cannotParse)));
}

// A sanitizer's own memory is many times the program's.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

TEST_F(ReadBackup, TakesLessMemoryThanEightTimesTheFile) {
    auto const peak = [] {
        rusage usage = {};
        ::getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss * 1024;
    };
    std::string text = R"({"homeId_":5,"blobs_":[)";
    auto const blob = toText(*makeBlob("area", OctetVec(4096, 0xA5)));
    while (text.size() < 8'000'000) { text += blob + ','; }
    auto const path = directory_.write("backup.json", text + blob + "]}");
    auto const taken = inChildProcess([&] {
        auto const before = peak();
        EXPECT_EQ(message_.read(path), ZResult::success);
        return std::to_string(peak() - before);
    });
    EXPECT_GT(std::stol(taken), 8'000'000); // the blobs at least
    EXPECT_LT(std::stol(taken), 8 * 8'000'000);
}

#endif

// These take much memory themselves, and so come after the measurement.

std::string const tooMuch = cannotParse + "more than 134217728 bytes or 4194304 values";

TEST_F(ReadBackup, RefusesMoreValuesThanMemoryShouldHold) {
    read(R"([{"homeId_":5},)" + goodBlob + "]");
    // Each zero but the first stands behind a comma, and there are as many commas and brackets as may be.
    auto const zeros = [](std::size_t count) {
        std::string text = "[0";
        for (std::size_t i = 1; i < count; ++i) { text += ",0"; }
        return text + "]";
    };
    EXPECT_EQ(read(zeros(4194305)), ZResult::Enum(9));
    EXPECT_THAT(log_.lines(), ElementsAre(tooMuch));
    EXPECT_THAT(blobNames(), ElementsAre("routes"));
    EXPECT_EQ(message_.homeId(), 5U);

    log_.clear();
    EXPECT_EQ(read(zeros(4194304)), ZResult::noBlobs);
    EXPECT_THAT(log_.lines(), IsEmpty());
    EXPECT_EQ(message_.homeId(), 0U);
}

TEST_F(ReadBackup, CountsValuesThatAQuoteInACommentSeemsToHide) {
    std::string text = "/*\"*/[0";
    for (int i = 0; i < 4194304; ++i) { text += ",0"; }
    EXPECT_EQ(read(text + "]"), ZResult::noBlobs);
    EXPECT_THAT(log_.lines(), ElementsAre(tooMuch));
}

TEST_F(ReadBackup, RefusesMoreBytesThanMemoryShouldHold) {
    auto const path = directory_.write("backup.json", "[" + goodBlob + "]");
    ASSERT_EQ(::truncate(path.c_str(), 134217729), 0); // grows it by a hole
    EXPECT_EQ(message_.read(path), ZResult::noBlobs);
    EXPECT_THAT(log_.lines(), ElementsAre(tooMuch));
    EXPECT_THAT(message_.blobs(), IsEmpty());

    log_.clear();
    ASSERT_EQ(::truncate(path.c_str(), 134217728), 0);
    EXPECT_EQ(message_.read(path), ZResult::success); // what follows the value is not looked at
    EXPECT_THAT(log_.lines(), IsEmpty());
}

// No file raises these errors, so the log does, when it is told of the second home id.

std::string const twoHomeIds = R"([{"homeId_":6},)" + goodBlob + R"(,{"homeId_":7}])";

template <class Error> std::function<void()> throwOnce(Error const& error) {
    return [error, thrown = false]() mutable {
        if (!thrown) {
            thrown = true;
            throw error;
        }
    };
}

TEST_F(ReadBackup, LogsAnErrorOfThisLibraryInFull) {
    read(R"([{"homeId_":5},)" + goodBlob + "]");
    log_.onEvent(throwOnce(SyntaxError("no log today")));
    EXPECT_EQ(read(twoHomeIds), ZResult::Enum(9));
    EXPECT_THAT(log_.lines(),
                ElementsAre(preferring + "7", StartsWith(cannotParse + "zorv::SyntaxError: no log today\n")));
    EXPECT_THAT(blobNames(), ElementsAre("routes"));
    EXPECT_EQ(message_.homeId(), 5U);
}

TEST_F(ReadBackup, LogsAnErrorOfTheStandardLibrary) {
    log_.onEvent(throwOnce(std::bad_alloc()));
    EXPECT_EQ(read(twoHomeIds), ZResult::Enum(9));
    EXPECT_THAT(log_.lines(), ElementsAre(preferring + "7", cannotParse + std::bad_alloc().what()));
}

TEST_F(ReadBackup, LogsAnErrorOfAnyOtherType) {
    log_.onEvent(throwOnce(7));
    EXPECT_EQ(read(twoHomeIds), ZResult::Enum(9));
    EXPECT_THAT(log_.lines(), ElementsAre(preferring + "7", cannotParse + "unknown exception"));
}

TEST_F(ReadBackup, LogsFromTheMessagesModule) {
    message_.read(directory_.path("none.json"));
    ASSERT_EQ(log_.events().size(), 1U);
    EXPECT_EQ(log_.events()[0].file, "zwave/libquillet/ManageNvmMsg");
    EXPECT_EQ(log_.events()[0].function, "read");
}

// ---- from one process to another

TEST_F(ReadBackup, RestoresByteForByteWhatAnotherProcessHasSaved) {
    auto const bytesOf = [](std::size_t size) {
        OctetVec bytes(size);
        std::uint32_t state = 2463534242U + static_cast<std::uint32_t>(size);
        for (auto& byte : bytes) {
            state = state * 1664525U + 1013904223U;
            byte = static_cast<unsigned char>(state >> 24U);
        }
        return bytes;
    };
    std::vector<std::size_t> const sizes = {0, 1, 2, 3, 255, 4096, 12'288, 65'537};
    auto const path = directory_.path("backup.json");
    inChildProcess([&] {
        ManageNvmMsg saved(ManageNvmOp::save, 0xC0FFEE01, ZResult::success, 100);
        for (auto const size : sizes) { saved.addBlob(makeBlob("area " + std::to_string(size), bytesOf(size))); }
        std::ofstream file(path);
        saved.print(file);
        return std::string();
    });
    EXPECT_EQ(message_.read(path), ZResult::success);
    EXPECT_EQ(message_.homeId(), 0xC0FFEE01);
    EXPECT_TRUE(message_.checkBlobs());
    ASSERT_EQ(message_.blobs().size(), sizes.size());
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        EXPECT_EQ(message_.blobs()[i]->name(), "area " + std::to_string(sizes[i]));
        EXPECT_TRUE(message_.blobs()[i]->getContents() == bytesOf(sizes[i])) << sizes[i];
    }
    EXPECT_THAT(log_.lines(), IsEmpty());
}

} // namespace
} // namespace zorv
