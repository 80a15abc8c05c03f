// What happens where memory runs out. The program's own operator new refuses large allocations while a test says so,
// also those of the libraries; so these tests have a program of their own.

#include "platform/libzorvcrypto/base64Decode.h"
#include "platform/libzorvcrypto/base64Encode.h"
#include "tests/unit/LogCapture.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>

namespace {

thread_local std::size_t largestAllocation = SIZE_MAX;

/// Refuses allocations above a size as long as it lives.
class AllocationLimit {
public:
    explicit AllocationLimit(std::size_t limit) { largestAllocation = limit; }
    ~AllocationLimit() { largestAllocation = SIZE_MAX; }
    AllocationLimit(AllocationLimit const&) = delete;
    AllocationLimit& operator=(AllocationLimit const&) = delete;
};

} // namespace

void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    return size > largestAllocation ? nullptr : std::malloc(size > 0 ? size : 1);
}

void* operator new(std::size_t size) {
    auto* const memory = operator new(size, std::nothrow);
    if (memory == nullptr) { throw std::bad_alloc(); }
    return memory;
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::nothrow_t const&) noexcept { std::free(memory); }

namespace zorv {
namespace {

namespace errc = boost::system::errc;

TEST(OutOfMemory, IsAnErrorOfTheEncoder) {
    OctetVec const bytes(100'000);
    boost::system::error_code error;
    AllocationLimit const limit(100'000);
    EXPECT_EQ(crypto::base64Encode(bytes.data(), bytes.size(), false, error), "");
    EXPECT_EQ(error, errc::not_enough_memory);
}

TEST(OutOfMemory, IsAnErrorOfTheDecoder) {
    std::string const text(100'000, 'A');
    boost::system::error_code error;
    AllocationLimit const limit(50'000);
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
        AllocationLimit const limit(100'000);
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
        AllocationLimit const limit(90'000);
        bytes = blob.getContents();
    }
    EXPECT_TRUE(bytes.empty());
    EXPECT_THAT(log.lines(), testing::ElementsAre("DEBUG ManageNvmMsg::getContents: cannot decode base64 vector"));
}

} // namespace
} // namespace zorv
