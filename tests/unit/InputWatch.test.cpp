// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/InputWatch.h"
#include "platform/libio/EventLoop.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <system_error>
#include <utility>

namespace {

using namespace zorv;
using namespace std::chrono_literals;

class InputWatchOfAPipe : public testing::Test {
protected:
    InputWatchOfAPipe() { EXPECT_EQ(::pipe(ends_.data()), 0); }

    ~InputWatchOfAPipe() override {
        for (auto const each : ends_) { ::close(each); }
    }

    void write() { EXPECT_EQ(::write(ends_[1], "x", 1), 1); }

    void closeWriter() { ::close(std::exchange(ends_[1], -1)); }

    int reader() const { return ends_[0]; }

    void serve(std::chrono::milliseconds time) {
        Timer const end(loop_, time, [this] { loop_.stop(); });
        loop_.run();
    }

    EventLoop loop_;
    int calls_ = 0;

private:
    std::array<int, 2> ends_{};
};

TEST_F(InputWatchOfAPipe, CallsOnceWhenThereIsInput) {
    InputWatch const watch(loop_, reader(), [this] { ++calls_; });
    serve(5ms);
    EXPECT_EQ(calls_, 0);
    write();
    serve(20ms);
    write();
    serve(5ms);
    EXPECT_EQ(calls_, 1);
}

TEST_F(InputWatchOfAPipe, CallsForWhatHasComeBefore) {
    write();
    InputWatch const watch(loop_, reader(), [this] { loop_.stop(); });
    loop_.run();
}

TEST_F(InputWatchOfAPipe, CallsWhenTheOtherSideIsClosed) {
    InputWatch const watch(loop_, reader(), [this] { loop_.stop(); });
    closeWriter();
    loop_.run();
}

TEST_F(InputWatchOfAPipe, IsSilentWhenItIsGone) {
    {
        InputWatch const watch(loop_, reader(), [this] { ++calls_; });
        write();
    }
    serve(5ms);
    EXPECT_EQ(calls_, 0);
}

TEST_F(InputWatchOfAPipe, LeavesTheDescriptorBlocking) {
    InputWatch const watch(loop_, reader(), [] {});
    serve(1ms);
    EXPECT_EQ(::fcntl(reader(), F_GETFL) & O_NONBLOCK, 0);
}

TEST(InputWatch, RefusesAFileOnADisk) {
    EventLoop loop;
    auto const file = ::open("/proc/self/exe", O_RDONLY | O_CLOEXEC);
    EXPECT_THROW(InputWatch(loop, file, [] {}), std::system_error);
    ::close(file);
}

} // namespace
