#include "platform/libio/TcpListener.h"
#include "platform/libio/connectTcp.h"
#include "tests/scenario/LineClient.h"
#include "tests/scenario/runLoop.h"

#include <boost/asio/ip/tcp.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;

TcpListener::Endpoint freePort() { return {boost::asio::ip::address_v4::loopback(), 0}; }

/// Two ends of one connection, of which the accepted one is observed.
class TcpLines : public testing::Test {
protected:
    void connect(TcpLimits const& limits) {
        listener_ = std::make_unique<TcpListener>(loop_, freePort(), limits, [this](TcpConnection accepted) {
            accepted_.emplace(std::move(accepted));
            accepted_->start({[this](std::string const& line) {
                                  lines_.push_back(line);
                                  onLine_();
                              },
                              [this] {
                                  ++overlong_;
                                  accepted_->send("too long");
                              },
                              [this](std::string const& reason) {
                                  closed_.push_back(reason);
                                  loop_.stop();
                              }});
        });
        client_ = std::make_unique<LineClient>(listener_->local().port());
    }

    /// Runs until the accepted end has read so many lines.
    void runUntilLines(std::size_t count) {
        onLine_ = [this, count] {
            if (lines_.size() == count) { loop_.stop(); }
        };
        runLoop(loop_);
    }

    EventLoop loop_;
    std::unique_ptr<TcpListener> listener_;
    std::optional<TcpConnection> accepted_;
    std::unique_ptr<LineClient> client_;
    std::function<void()> onLine_ = [] {};
    std::vector<std::string> lines_;
    int overlong_ = 0;
    std::vector<std::string> closed_;
};

using Strings = std::vector<std::string>;

TEST_F(TcpLines, EndWithOrWithoutACarriageReturn) {
    connect({});
    client_->send("one\ntwo\r\n\n\r\nth\rree\n");
    runUntilLines(5);
    EXPECT_EQ((Strings{"one", "two", "", "", "th\rree"}), lines_);
}

TEST_F(TcpLines, ArriveWholeHoweverTheyAreCut) {
    connect({});
    for (char const c : std::string("first line\nsecond line\n")) { client_->send(std::string(1, c)); }
    runUntilLines(2);
    EXPECT_EQ((Strings{"first line", "second line"}), lines_);
}

TEST_F(TcpLines, LongerThanOneReadArriveWhole) {
    connect({});
    std::string const line(100000, 'x');
    client_->send(line + "\n" + line + "\nend\n");
    runUntilLines(3);
    EXPECT_EQ((Strings{line, line, "end"}), lines_);
}

TEST_F(TcpLines, OfExactlyTheLimitAreRead) {
    connect({20, 1000});
    std::string const line(20, 'x');
    client_->send(line + "\n" + line + "\r\n");
    runUntilLines(2);
    EXPECT_EQ((Strings{line, line}), lines_);
    EXPECT_EQ(0, overlong_);
}

TEST_F(TcpLines, OneLongerThanTheLimitEndTheConnectionAfterWhatIsSentThen) {
    connect({20, 1000});
    client_->send("good\n" + std::string(21, 'x') + "\nlost\n");
    std::thread peer([this] {
        EXPECT_EQ("too long", client_->receiveLine());
        EXPECT_TRUE(client_->endsAfter(0));
        client_->close();
    });
    runLoop(loop_);
    peer.join();
    EXPECT_EQ((Strings{"good"}), lines_);
    EXPECT_EQ(1, overlong_);
    EXPECT_EQ((Strings{"closed by the peer"}), closed_);
}

TEST_F(TcpLines, WithoutAnEndPastTheLimitAreNotWaitedFor) {
    connect({20, 1000});
    client_->send(std::string(22, 'x'));
    std::thread peer([this] {
        EXPECT_EQ("too long", client_->receiveLine());
        client_->close();
    });
    runLoop(loop_);
    peer.join();
    EXPECT_EQ(1, overlong_);
}

TEST_F(TcpLines, ThatWaitBeyondTheBacklogEndTheConnection) {
    connect({20, 1000});
    client_->send("go\n");
    onLine_ = [this] {
        for (int i = 0; i < 10; ++i) { accepted_->send(std::string(99, 'x')); }
        loop_.post([this] { accepted_->send("one more"); });
        // All in one call of the loop, so that nothing can have been sent meanwhile.
        accepted_->send("beyond");
    };
    runLoop(loop_);
    EXPECT_EQ((Strings{"does not read: 1000 bytes wait"}), closed_);
}

TEST_F(TcpLines, LongerThanTheBacklogMayWaitAlone) {
    connect({20, 1000});
    client_->send("go\n");
    onLine_ = [this] { accepted_->send(std::string(5000, 'x')); };
    std::thread peer([this] {
        EXPECT_EQ(std::string(5000, 'x'), client_->receiveLine());
        client_->close();
    });
    runLoop(loop_);
    peer.join();
    EXPECT_EQ((Strings{"closed by the peer"}), closed_);
}

TEST_F(TcpLines, AreNotReadAnyMoreOnceTheirHandlerClosedTheConnection) {
    connect({});
    client_->send("one\ntwo\n");
    onLine_ = [this] { accepted_->close(); };
    runLoop(loop_);
    EXPECT_EQ((Strings{"one"}), lines_);
    EXPECT_EQ((Strings{"closed here"}), closed_);
}

TEST_F(TcpLines, MayDestroyTheirConnectionInTheirHandler) {
    connect({});
    client_->send("one\ntwo\n");
    onLine_ = [this] {
        accepted_.reset();
        loop_.post([this] { loop_.post([this] { loop_.stop(); }); });
    };
    runLoop(loop_);
    EXPECT_EQ((Strings{"one"}), lines_);
    EXPECT_TRUE(closed_.empty()); // nobody is told who let go himself
    EXPECT_TRUE(client_->endsAfter(0));
}

TEST_F(TcpLines, KnowTheAddressOfTheirPeer) {
    connect({});
    client_->send("one\n");
    runUntilLines(1);
    EXPECT_EQ("127.0.0.1", accepted_->remote().address().to_string());
    EXPECT_NE(listener_->local().port(), accepted_->remote().port());
}

class ConnectTcp : public testing::Test {
protected:
    /// The reason why there is no connection, or none.
    std::string connect(std::string const& host, unsigned short port) {
        std::string outcome = "never told";
        connectTcp(loop_, host, port, std::chrono::seconds(20), TcpLimits(),
                   [&](std::optional<TcpConnection> connection, std::string const& reason) {
                       outcome = connection ? "connected" : reason;
                       loop_.stop();
                   });
        runLoop(loop_);
        return outcome;
    }

    EventLoop loop_;
    TcpListener listener_{loop_, freePort(), TcpLimits(), [](TcpConnection) {}};
};

TEST_F(ConnectTcp, TakesAnAddressOrAName) {
    EXPECT_EQ("connected", connect("127.0.0.1", listener_.local().port()));
    EXPECT_EQ("connected", connect("localhost", listener_.local().port()));
}

TEST_F(ConnectTcp, TellsWhyThereIsNoConnection) {
    unsigned short unused = 0;
    {
        unused = TcpListener(loop_, freePort(), TcpLimits(), [](TcpConnection) {}).local().port();
    }
    EXPECT_EQ("Connection refused", connect("127.0.0.1", unused));
    EXPECT_NE("connected", connect("no name at all", unused));
}

TEST_F(ConnectTcp, LeavesNothingBehindWhenTheLoopGoesFirst) {
    bool told = false;
    {
        EventLoop loop;
        connectTcp(loop, "127.0.0.1", listener_.local().port(), std::chrono::seconds(20), TcpLimits(),
                   [&told](std::optional<TcpConnection>, std::string const&) { told = true; });
    }
    EXPECT_FALSE(told);
}

TEST(EventLoop, RunsWhatIsPostedAndEndsWhenNothingIsLeft) {
    EventLoop loop;
    int runs = 0;
    loop.post([&] { ++runs; });
    EXPECT_EQ(0, runs);
    loop.run();
    EXPECT_EQ(1, runs);
    loop.post([&] { ++runs; });
    loop.run();
    EXPECT_EQ(2, runs);
}

TEST(EventLoop, StopsFromAnotherThread) {
    EventLoop loop;
    Timer const timer(loop, std::chrono::hours(1), [] {});
    std::thread other([&loop] { loop.stop(); });
    loop.run();
    other.join();
}

TEST(Timer, IsNotCalledOnceItWasCancelledReplacedOrDestroyed) {
    EventLoop loop;
    std::vector<int> called;
    auto const call = [&called](int number) { return [&called, number] { called.push_back(number); }; };
    Timer cancelled(loop, std::chrono::milliseconds(0), call(1));
    Timer replaced(loop, std::chrono::milliseconds(0), call(2));
    { Timer const destroyed(loop, std::chrono::milliseconds(0), call(3)); }
    cancelled.cancel();
    replaced = Timer(loop, std::chrono::milliseconds(1), call(4));
    loop.run();
    EXPECT_EQ((std::vector<int>{4}), called);
}

TEST(Timer, MayBeDestroyedByItsOwnWork) {
    EventLoop loop;
    int called = 0;
    std::optional<Timer> timer;
    timer.emplace(loop, std::chrono::milliseconds(0), [&] {
        timer.reset();
        ++called;
    });
    loop.run();
    EXPECT_EQ(1, called);
}

} // namespace
