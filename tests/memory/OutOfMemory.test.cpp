// SPDX-License-Identifier: Apache-2.0
// What happens when memory runs out.

#include "platform/libzorvcrypto/base64Decode.h"
#include "platform/libzorvcrypto/base64Encode.h"
#include "tests/memory/Allocations.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/inChildProcess.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace zorv {
namespace {

namespace errc = boost::system::errc;

TEST(OutOfMemory, IsAnErrorOfTheEncoder) {
    OctetVec const bytes(100'000);
    boost::system::error_code error;
    Allocations::Limit const limit(100'000);
    EXPECT_EQ(crypto::base64Encode(bytes.data(), bytes.size(), false, error), "");
    EXPECT_EQ(error, errc::not_enough_memory);
}

TEST(OutOfMemory, IsAnErrorOfTheDecoder) {
    std::string const text(100'000, 'A');
    boost::system::error_code error;
    Allocations::Limit const limit(50'000);
    auto const result = crypto::base64Decode(text.data(), text.size(), error);
    EXPECT_TRUE(!result);
    EXPECT_EQ(error, errc::not_enough_memory);
}

TEST(OutOfMemory, LeavesABlobWithoutContentsWithItsNewSizeAndItsOldChecksum) {
    Blob blob("routes", 4096, 4, 4065733082U, "AQIDBA==");
    OctetVec const bytes(100'000);
    LogCapture const log;
    bool failed = false;
    {
        Allocations::Limit const limit(100'000);
        failed = blob.setContents(bytes);
    }
    EXPECT_TRUE(failed);
    EXPECT_EQ(blob.size(), 100'000U);
    EXPECT_EQ(blob.crc(), 4065733082U);
    EXPECT_EQ(blob.contents(), "");
    EXPECT_THAT(log.lines(),
                testing::ElementsAre("DEBUG ManageNvmMsg::setContents: cannot encode byte vector, error generic:12"));
}

TEST(OutOfMemory, GivesNoBytesOfABlob) {
    Blob blob("routes", 4096);
    EXPECT_FALSE(blob.setContents(OctetVec(100'000, 1)));
    LogCapture const log;
    OctetVec bytes = {1};
    {
        Allocations::Limit const limit(90'000);
        bytes = blob.getContents();
    }
    EXPECT_TRUE(bytes.empty());
    EXPECT_THAT(log.lines(), testing::ElementsAre("DEBUG ManageNvmMsg::getContents: cannot decode base64 vector"));
}

TEST(OutOfMemory, NeverMakesABlobThrowWhereverItHappens) {
    std::string const longName(100, 'n'); // its log line needs memory
    Blob const good(longName, 0, 4, 4065733082U, "AQIDBA==");
    Blob const corrupt(longName, 0, 4, 1, "AQIDBA==");
    OctetVec const bytes(100, 1);
    std::size_t granted = 0;
    for (bool ranOut = true; ranOut; ++granted) {
        Blob filled(longName, 0);
        OctetVec taken;
        OctetVec none;
        bool failed = false;
        {
            Allocations::Count const count(granted);
            taken = good.getContents();
            none = corrupt.getContents();
            failed = filled.setContents(bytes);
            ranOut = Allocations::Count::ranOut();
        }
        EXPECT_TRUE(taken.empty() || taken == (OctetVec{1, 2, 3, 4})) << granted;
        EXPECT_TRUE(none.empty()) << granted;
        EXPECT_EQ(failed, filled.contents().empty()) << granted;
    }
    EXPECT_GT(granted, 5U);
}

std::string const backup = R"([{"homeId_":5},{"name_":"a name that does not fit into a small string","offset_":0,)"
                           R"("size_":4,"crc_":4065733082,"contents_":"AQIDBA=="},{"homeId_":6}])";

/// Results of reading a file with 0, 1, 2, ... allocations, up to the first reading that does not run out of them.
std::vector<ZResult::Enum> readWithFewAllocations(std::string const& path) {
    std::vector<ZResult::Enum> results;
    for (bool ranOut = true; ranOut;) {
        ManageNvmMsg message;
        auto result = ZResult::none;
        {
            Allocations::Count const count(results.size());
            result = message.read(path);
            ranOut = Allocations::Count::ranOut();
        }
        EXPECT_EQ(result == ZResult::success, !message.blobs().empty() && message.homeId() == 6) << results.size();
        results.push_back(result);
    }
    return results;
}

TEST(OutOfMemory, NeverMakesTheReadingOfABackupThrowWhereverItHappens) {
    TemporaryDirectory const directory;
    auto const results = readWithFewAllocations(directory.write("a name of some length for the backup.json", backup));
    EXPECT_GT(results.size(), 20U);
    EXPECT_EQ(results.back(), ZResult::success);
    for (std::size_t i = 0; i + 1 < results.size(); ++i) {
        EXPECT_THAT(results[i], testing::AnyOf(ZResult::fileNotFound, ZResult::fileReadFailure, ZResult::noBlobs,
                                               ZResult::success)) // the log gives up by itself
            << i;
    }
    EXPECT_THAT(results, testing::Contains(ZResult::fileReadFailure));
    EXPECT_THAT(results, testing::Contains(ZResult::noBlobs));
}

TEST(OutOfMemory, NeverMakesTheReportOfAReadingThrowWhereverItHappens) {
    TemporaryDirectory const directory;
    for (auto const& [path, expected] :
         {std::pair(directory.path("a name of some length that no file has.json"), ZResult::fileNotFound),
          std::pair(directory.path(), ZResult::fileReadFailure),
          std::pair(directory.write("a name of some length for rubbish.json", "[{]"), ZResult::noBlobs)}) {
        auto const results = readWithFewAllocations(path);
        EXPECT_GT(results.size(), 2U) << path;
        EXPECT_EQ(results.back(), expected) << path;
        EXPECT_THAT(results, testing::Not(testing::Contains(ZResult::success))) << path;
    }
}

// A sanitizer reserves address space by the terabyte.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

TEST(OutOfMemory, OfTheWholeProcessIsAResultOfReadingABackup) {
    TemporaryDirectory const directory;
    std::string text = "[[]";
    while (text.size() < 2'000'000) { text += ",[]"; }
    auto const path = directory.write("backup.json", text + "]");
    auto const readIn = [&](rlim_t megabytes) {
        return inChildProcess([&] {
            std::ifstream statm("/proc/self/statm");
            rlim_t pages = 0;
            statm >> pages;
            rlimit const limit{pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + (megabytes << 20U),
                               RLIM_INFINITY};
            if (::setrlimit(RLIMIT_AS, &limit) != 0) { return std::string("cannot limit the memory"); }
            LogCapture const log;
            auto const result = toString(ManageNvmMsg().read(path));
            return result + (log.lines().empty() ? "" : ' ' + log.lines().back());
        });
    };
    // A thread of the log may have left an arena of 64 MiB, which the allocator falls back to; the tree needs 100.
    EXPECT_EQ(readIn(8),
              std::string("noBlobs WARN ManageNvmMsg::read: cannot parse object, ") + std::bad_alloc().what());
    EXPECT_EQ(readIn(1024), "noBlobs"); // the file has no blobs
}

#endif

} // namespace
} // namespace zorv
