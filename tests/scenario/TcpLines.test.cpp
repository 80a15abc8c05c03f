// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/TcpBudget.h"
#include "platform/libio/TcpListener.h"
#include "platform/libio/availableMemory.h"
#include "platform/libio/connectTcp.h"
#include "platform/libmessage_bus/Allowance.h"
#include "tests/scenario/LineClient.h"
#include "tests/scenario/runLoop.h"
#include "tests/support/inChildProcess.h"
#include "tests/support/systemText.h"

#include <boost/asio/ip/tcp.hpp>

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <functional>
#include <iomanip>
#include <memory>
#include <optional>
#include <sstream>
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
            TcpConnection::Handlers handlers;
            handlers.line = [this](std::string const& line) {
                lines_.push_back(line);
                onLine_();
            };
            handlers.overlong = [this] {
                ++overlong_;
                accepted_->send("too long");
            };
            if (onInputEnded_) { handlers.inputEnded = onInputEnded_; }
            handlers.closed = [this](std::string const& reason) {
                closed_.push_back(reason);
                loop_.stop();
            };
            accepted_->start(std::move(handlers));
        });
        client_ = std::make_unique<LineClient>(listener_->local().port());
    }

    static TcpLimits small() {
        TcpLimits limits;
        limits.line = 20;
        limits.backlog = 1000;
        return limits;
    }

    /// Notices the most bytes that leave between two turns of everybody else.
    void watchSending() {
        loop_.post([this, before = accepted_->waiting()] {
            mostInATurn_ = std::max(mostInATurn_, before - accepted_->waiting());
            if (accepted_->waiting() > 0) { watchSending(); }
        });
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
    std::vector<std::unique_ptr<LineClient>> clients_;
    std::function<void()> onLine_ = [] {};
    std::function<void()> onInputEnded_;
    std::vector<std::string> lines_;
    int overlong_ = 0;
    std::size_t mostInATurn_ = 0;
    std::vector<std::string> closed_;
};

using Strings = std::vector<std::string>;

TEST_F(TcpLines, EndWithOrWithoutACarriageReturn) {
    connect({});
    client_->send("one\ntwo\r\n\n\r\nth\rree\n");
    runUntilLines(5);
    EXPECT_EQ(lines_, (Strings{"one", "two", "", "", "th\rree"}));
}

TEST_F(TcpLines, ArriveWholeHoweverTheyAreCut) {
    connect({});
    for (char const c : std::string("first line\nsecond line\n")) { client_->send(std::string(1, c)); }
    runUntilLines(2);
    EXPECT_EQ(lines_, (Strings{"first line", "second line"}));
}

TEST_F(TcpLines, LongerThanOneReadArriveWhole) {
    connect({});
    std::string const line(100000, 'x');
    client_->send(line + "\n" + line + "\nend\n");
    runUntilLines(3);
    EXPECT_EQ(lines_, (Strings{line, line, "end"}));
}

TEST_F(TcpLines, OfExactlyTheLimitAreRead) {
    connect(small());
    std::string const line(20, 'x');
    client_->send(line + "\n" + line + "\r\n");
    runUntilLines(2);
    EXPECT_EQ(lines_, (Strings{line, line}));
    EXPECT_EQ(overlong_, 0);
}

TEST_F(TcpLines, OneLongerThanTheLimitEndTheConnectionAfterWhatIsSentThen) {
    connect(small());
    client_->send("good\n" + std::string(21, 'x') + "\nlost\n");
    std::thread peer([this] {
        EXPECT_EQ(client_->receiveLine(), "too long");
        EXPECT_TRUE(client_->endsAfter(0));
        client_->close();
    });
    runLoop(loop_);
    peer.join();
    EXPECT_EQ(lines_, (Strings{"good"}));
    EXPECT_EQ(overlong_, 1);
    EXPECT_EQ(closed_, (Strings{"line too long"}));
}

TEST_F(TcpLines, WithoutAnEndPastTheLimitAreNotWaitedFor) {
    connect(small());
    client_->send(std::string(22, 'x'));
    std::thread peer([this] {
        EXPECT_EQ(client_->receiveLine(), "too long");
        client_->close();
    });
    runLoop(loop_);
    peer.join();
    EXPECT_EQ(overlong_, 1);
}

TEST_F(TcpLines, ThatWaitUpToTheBacklogReachAPeerThatReadsLate) {
    connect(small());
    client_->send("go\n");
    onLine_ = [this] {
        for (int i = 0; i < 10; ++i) { accepted_->send(std::string(99, 'x')); } // and its end: 1000 bytes in all
        accepted_->finish("done");
    };
    std::thread peer([this] {
        EXPECT_TRUE(client_->endsAfter(10));
        client_->close();
    });
    runLoop(loop_);
    peer.join();
    EXPECT_EQ(closed_, (Strings{"done"}));
}

TEST_F(TcpLines, ThatWaitBeyondTheBacklogByOneByteEndTheConnection) {
    connect(small());
    client_->send("go\n");
    onLine_ = [this] {
        // All in one call of the loop, so that nothing can have been sent meanwhile.
        for (int i = 0; i < 9; ++i) { accepted_->send(std::string(99, 'x')); }
        accepted_->send(std::string(100, 'x'));
    };
    runLoop(loop_);
    EXPECT_EQ(closed_, (Strings{"does not read: 900 bytes wait"}));
}

TEST_F(TcpLines, LongerThanTheBacklogDoNotWaitEither) {
    auto limits = small();
    limits.line = 5000;
    connect(limits);
    client_->send("go\n");
    std::size_t longest = 0;
    onLine_ = [this, &longest] {
        longest = accepted_->longestLine();
        accepted_->send(std::string(1000, 'x'));
    };
    runLoop(loop_);
    EXPECT_EQ(longest, 999U);
    EXPECT_EQ(closed_, (Strings{"does not read: 0 bytes wait"}));
}

TEST_F(TcpLines, MakeRoomInTheBacklogOnceTheyAreSent) {
    connect(small());
    client_->send("go\n");
    int left = 50;
    std::function<void()> const sendMore = [&] {
        accepted_->send(std::string(99, 'x'));
        for (int i = 0; i < 8; ++i) { accepted_->send(std::string(98, 'x')); }
        if (--left == 0) { accepted_->finish("done"); }
    };
    onLine_ = sendMore;
    std::thread peer([this] {
        for (int i = 0; i < 50; ++i) {
            for (int line = 0; line < 9; ++line) { client_->receiveLine(); }
            client_->send("more\n");
        }
        EXPECT_TRUE(client_->endsAfter(0));
        client_->close();
    });
    runLoop(loop_);
    peer.join();
    EXPECT_EQ(closed_, (Strings{"done"}));
}

TEST_F(TcpLines, OneTooLongIsReadToItsEndSoThatThePeerSeesWhatIsSentThen) {
    connect(small());
    client_->send(std::string(22, 'x'));
    std::thread peer([this] {
        for (int i = 0; i < 100; ++i) { ASSERT_TRUE(client_->send(std::string(100000, 'x'))); }
        EXPECT_EQ(client_->receiveLine(), "too long");
        client_->close();
    });
    runLoop(loop_);
    peer.join();
    EXPECT_EQ(closed_, (Strings{"line too long"}));
}

TEST_F(TcpLines, OneTooLongIsNotReadForEver) {
    auto limits = small();
    limits.farewell = std::chrono::milliseconds(30);
    connect(limits);
    client_->send(std::string(22, 'x'));
    runLoop(loop_); // the peer neither sends nor closes
    EXPECT_EQ(closed_, (Strings{"line too long"}));
}

TEST_F(TcpLines, OfAPeerThatSentManyAtOnceLeaveOthersTheirTurn) {
    connect({});
    std::size_t linesAtTurn = 0;
    onLine_ = [&] {
        if (lines_.size() == 1) {
            loop_.post([&] { linesAtTurn = lines_.size(); });
        }
        if (lines_.size() == 1000) { loop_.stop(); }
    };
    client_->send(std::string(1000, '\n'));
    runLoop(loop_);
    EXPECT_EQ(linesAtTurn, 8U);
}

TEST_F(TcpLines, ThatAreLongAreHandedOnOneInATurn) {
    TcpLimits limits;
    limits.budget = std::make_shared<TcpBudget>(loop_, 1000000, 10);
    std::vector<TcpConnection> connections;
    int inThisTurn = 0;
    int most = 0;
    int lines = 0;
    TcpListener const listener(loop_, freePort(), limits, [&](TcpConnection accepted) {
        TcpConnection::Handlers handlers;
        handlers.line = [&](std::string const&) {
            if (++inThisTurn == 1) {
                loop_.post([&] { inThisTurn = 0; });
            }
            most = std::max(most, inThisTurn);
            if (++lines == 6) { loop_.stop(); }
        };
        connections.push_back(std::move(accepted));
        connections.back().start(std::move(handlers));
        if (connections.size() < 3) { return; }
        for (auto& client : clients_) { client->send(std::string(70000, 'x') + '\n' + std::string(70000, 'x') + '\n'); }
    });
    connections.reserve(3);
    for (int i = 0; i < 3; ++i) { clients_.push_back(std::make_unique<LineClient>(listener.local().port())); }
    runLoop(loop_);
    EXPECT_EQ(lines, 6);
    EXPECT_EQ(most, 1);
}

TEST_F(TcpLines, ThatAreLongAreSentAPieceInATurn) {
    connect({});
    onLine_ = [this] {
        if (lines_.size() == 2) { return loop_.stop(); }
        accepted_->send(std::string(4000000, 'x'));
        watchSending();
    };
    std::thread peer([this] {
        client_->send("go\n");
        EXPECT_EQ(client_->receiveLine(), std::string(4000000, 'x'));
        client_->send("received\n");
    });
    runLoop(loop_);
    peer.join();
    EXPECT_EQ(mostInATurn_, 65536U);
}

TEST_F(TcpLines, ThatAnswerAllThatCameInOneTurnLeaveInOneWrite) {
    connect({});
    onLine_ = [this] {
        accepted_->send("answer");
        if (lines_.size() == 9) { loop_.stop(); }
    };
    std::thread peer([this] {
        client_->send("1\n2\n3\n4\n5\n6\n7\n8\n");
        for (int i = 0; i < 8; ++i) { EXPECT_EQ(client_->receiveLine(), "answer"); }
        EXPECT_EQ(client_->receivedSegments(), 1U); // no write shares its segment with another
        client_->send("9\n");
    });
    runLoop(loop_);
    peer.join();
}

TEST_F(TcpLines, OfAllLengthsArriveInTheOrderInWhichTheyAreSent) {
    connect({});
    std::vector<std::string> sent;
    for (auto const size : {0U, 1U, 70000U, 3U, 65534U, 1U, 65536U, 5U, 200000U, 0U, 7U}) {
        sent.emplace_back(size, static_cast<char>('a' + sent.size()));
    }
    onLine_ = [&] {
        if (lines_.size() == 2) { return loop_.stop(); }
        for (auto const& line : sent) { accepted_->send(line); }
    };
    Strings received;
    std::thread peer([&] {
        client_->send("go\n");
        while (received.size() < sent.size()) { received.push_back(client_->receiveLine()); }
        client_->send("received\n");
    });
    runLoop(loop_);
    peer.join();
    EXPECT_EQ(received, sent);
}

TEST_F(TcpLines, AreCountedTwiceWhileTheyAreMovedToALargerBuffer) {
    TcpLimits limits;
    limits.line = 200000;
    limits.budget = std::make_shared<TcpBudget>(loop_, 300000, 10);
    connect(limits);
    onLine_ = [this] { loop_.stop(); };
    client_->send(std::string(200000, 'x') + '\n');
    runLoop(loop_);
    EXPECT_EQ(closed_, (Strings{"holds the most memory of all"}));
    EXPECT_EQ(lines_, Strings());
}

TEST_F(TcpLines, GiveTheirMemoryBackWhenTheirConnectionEnds) {
    TcpLimits limits;
    limits.line = 200000;
    limits.budget = std::make_shared<TcpBudget>(loop_, 300000, 10);
    connect(limits);
    client_->send(std::string(60000, 'x'));
    client_->close();
    runLoop(loop_);
    ASSERT_EQ(closed_, (Strings{"closed by the peer"}));
    TcpBudget::Share other(limits.budget, [] {});
    EXPECT_TRUE(other.hold(290000)); // although the ended connection is still there
}

TEST_F(TcpLines, CountTowardsTheCommonLimitWhileTheyWaitToBeSent) {
    TcpLimits limits;
    limits.budget = std::make_shared<TcpBudget>(loop_, 300000, 10);
    connect(limits);
    onLine_ = [this] {
        accepted_->send(std::string(400000, 'x'));
        loop_.post([this] { loop_.stop(); });
    };
    client_->send("go\n");
    runLoop(loop_);
    EXPECT_EQ(closed_, (Strings{"holds the most memory of all"}));
}

TEST_F(TcpLines, GiveTheirMemoryBackOnceTheyAreSent) {
    TcpLimits limits;
    limits.budget = std::make_shared<TcpBudget>(loop_, 300000, 10);
    connect(limits);
    TcpBudget::Share other(limits.budget, [] {});
    onLine_ = [&] {
        if (lines_.size() == 1) { return accepted_->send(std::string(200000, 'x')); }
        EXPECT_TRUE(other.hold(290000)); // the connection would have to end if it still held the line
        loop_.post([this] { loop_.stop(); });
    };
    client_->send("go\n");
    std::thread peer([this] {
        EXPECT_EQ(client_->receiveLine().size(), 200000U);
        client_->send("more\n");
    });
    runLoop(loop_);
    peer.join();
    EXPECT_EQ(closed_, Strings());
}

TEST_F(TcpLines, EndOnceTheyAreSentHoweverLongThePeerMayTakeToLeave) {
    TcpLimits limits;
    limits.farewell = std::chrono::hours(1);
    connect(limits);
    onLine_ = [this] {
        accepted_->send("answer");
        accepted_->finish("done");
    };
    bool ended = false;
    std::thread reader([&] {
        client_->sendLine("question");
        ended = client_->endsAfter(1);
        client_->close();
    });
    runLoop(loop_);
    reader.join();
    EXPECT_TRUE(ended);
    EXPECT_EQ(closed_, (Strings{"done"}));
}

TEST_F(TcpLines, KeepAConnectionWhosePeerEndedItsOutputUntilItIsFinished) {
    onInputEnded_ = [this] {
        loop_.post([this] {
            accepted_->send("answer");
            accepted_->finish("done");
        });
    };
    connect({});
    client_->send("question\n");
    client_->endOutput();
    runLoop(loop_);
    EXPECT_EQ(closed_, (Strings{"done"}));
    EXPECT_TRUE(client_->endsAfter(1));
}

TEST_F(TcpLines, EndAConnectionWhosePeerEndedItsOutputAndIsGone) {
    onInputEnded_ = [this] { client_->reset(); };
    connect({});
    client_->endOutput();
    runLoop(loop_);
    EXPECT_EQ(closed_, (Strings{"closed by the peer"}));
}

TEST_F(TcpLines, HaveTheSystemWatchForPeersThatAreGone) {
    connect({});
    client_->send("one\n");
    runUntilLines(1);
    // Of each connection: its two ends in hex, ..., the timer that runs and its time in hundredths of a second.
    std::ostringstream ends;
    ends << std::hex << std::uppercase << std::setfill('0') << ':' << std::setw(4) << listener_->local().port()
         << " 0100007F:" << std::setw(4) << client_->localPort() << ' ';
    std::ifstream table("/proc/net/tcp");
    std::string found;
    for (std::string line; std::getline(table, line);) {
        if (line.find(ends.str()) != std::string::npos) { found = line; }
    }
    std::istringstream fields(found);
    std::string number, local, remote, state, queues, timer;
    fields >> number >> local >> remote >> state >> queues >> timer;
    ASSERT_EQ(timer.substr(0, 3), "02:") << found; // keep-alive
    EXPECT_LE(std::stol(timer.substr(3), nullptr, 16), 6000);
}

TEST_F(TcpLines, AreNotReadAnyMoreOnceTheirHandlerClosedTheConnection) {
    connect({});
    client_->send("one\ntwo\n");
    onLine_ = [this] { accepted_->close(); };
    runLoop(loop_);
    EXPECT_EQ(lines_, (Strings{"one"}));
    EXPECT_EQ(closed_, (Strings{"closed here"}));
}

TEST_F(TcpLines, MayDestroyTheirConnectionInTheirHandler) {
    connect({});
    client_->send("one\ntwo\n");
    onLine_ = [this] {
        accepted_.reset();
        loop_.post([this] { loop_.post([this] { loop_.stop(); }); });
    };
    runLoop(loop_);
    EXPECT_EQ(lines_, (Strings{"one"}));
    EXPECT_TRUE(closed_.empty()); // the owner that destroys a connection is not told of its end
    EXPECT_TRUE(client_->endsAfter(0));
}

TEST_F(TcpLines, KnowTheAddressOfTheirPeer) {
    connect({});
    client_->send("one\n");
    runUntilLines(1);
    EXPECT_EQ(accepted_->remote().address().to_string(), "127.0.0.1");
    EXPECT_EQ(accepted_->remote().port(), client_->localPort());
}

class ConnectTcp : public testing::Test {
protected:
    /// "connected", or the reason why there is no connection.
    std::string connect(std::string const& host, unsigned short port,
                        std::chrono::milliseconds timeout = std::chrono::seconds(20)) {
        std::string outcome = "never told";
        auto const tell = [&](std::string const& text) {
            outcome = text;
            loop_.stop();
        };
        ConnectHandlers handlers;
        handlers.connected = [&](TcpConnection const&) { tell("connected"); };
        handlers.failed = tell;
        connectTcp(loop_, host, port, timeout, TcpLimits(), std::move(handlers));
        runLoop(loop_);
        return outcome;
    }

    EventLoop loop_;
    TcpListener listener_{loop_, freePort(), TcpLimits(), [](TcpConnection) {}};
};

TEST_F(ConnectTcp, TakesAnAddressOrAName) {
    EXPECT_EQ(connect("127.0.0.1", listener_.local().port()), "connected");
    EXPECT_EQ(connect("localhost", listener_.local().port()), "connected");
}

TEST_F(ConnectTcp, TellsWhyThereIsNoConnection) {
    unsigned short unused = 0;
    {
        unused = TcpListener(loop_, freePort(), TcpLimits(), [](TcpConnection) {}).local().port();
    }
    EXPECT_EQ(connect("127.0.0.1", unused), systemText(ECONNREFUSED));
    EXPECT_NE(connect("no name at all", unused), "connected");
}

TEST_F(ConnectTcp, GivesUpInTime) {
    // A listener that accepts nobody and whose queue is full.
    boost::asio::io_context context;
    boost::asio::ip::tcp::acceptor full(context, freePort(), false);
    full.listen(0);
    auto const port = full.local_endpoint().port();
    std::vector<boost::asio::ip::tcp::socket> waiting;
    for (int i = 0; i < 4; ++i) {
        waiting.emplace_back(context).async_connect(full.local_endpoint(), [](boost::system::error_code const&) {});
    }
    EXPECT_EQ(connect("127.0.0.1", port, std::chrono::milliseconds(50)), "timed out");
}

TEST_F(ConnectTcp, LeavesNothingBehindWhenTheLoopGoesFirst) {
    bool told = false;
    {
        EventLoop loop;
        ConnectHandlers handlers;
        handlers.connected = [&told](TcpConnection const&) { told = true; };
        handlers.failed = [&told](std::string const&) { told = true; };
        connectTcp(loop, "127.0.0.1", listener_.local().port(), std::chrono::seconds(20), TcpLimits(),
                   std::move(handlers));
    }
    EXPECT_FALSE(told);
}

TEST(EventLoop, RunsWhatIsPostedAndEndsWhenNothingIsLeft) {
    EventLoop loop;
    int runs = 0;
    loop.post([&] { ++runs; });
    EXPECT_EQ(runs, 0);
    loop.run();
    EXPECT_EQ(runs, 1);
    loop.post([&] { ++runs; });
    loop.run();
    EXPECT_EQ(runs, 2);
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
    EXPECT_EQ(called, (std::vector<int>{4}));
}

TEST(Timer, IsNotCalledWhenAnotherTimerOfTheSameMomentCancelsIt) {
    EventLoop loop;
    int called = 0;
    Timer first;
    Timer second;
    first = Timer(loop, std::chrono::milliseconds(0), [&] {
        second.cancel();
        ++called;
    });
    second = Timer(loop, std::chrono::milliseconds(0), [&] {
        first.cancel();
        ++called;
    });
    loop.run();
    EXPECT_EQ(called, 1);
}

TEST(SignalWatch, CallsItsWorkForEachSignalUntilItIsDestroyed) {
    EventLoop loop;
    std::vector<int> signals;
    std::optional<SignalWatch> watch;
    watch.emplace(loop, std::vector<int>{SIGUSR1, SIGUSR2}, [&](int signal) {
        signals.push_back(signal);
        if (signals.size() == 1) {
            std::raise(SIGUSR2);
        } else {
            watch.reset();
        }
    });
    loop.post([] { std::raise(SIGUSR1); });
    loop.run(); // ends because nothing is waited for any more
    EXPECT_EQ(signals, (std::vector<int>{SIGUSR1, SIGUSR2}));
}

TEST(TcpBudget, IsFullAtItsLimitOfConnections) {
    EventLoop loop;
    auto const budget = std::make_shared<TcpBudget>(loop, 100, 2);
    TcpBudget::Share const one(budget, [] {});
    EXPECT_FALSE(budget->full());
    {
        TcpBudget::Share const two(budget, [] {});
        EXPECT_TRUE(budget->full());
    }
    EXPECT_FALSE(budget->full());
}

TEST(TcpBudget, GrantsUpToItsLimitAndNotOneByteMore) {
    EventLoop loop;
    auto const budget = std::make_shared<TcpBudget>(loop, 100, 10);
    TcpBudget::Share one(budget, [] {});
    EXPECT_TRUE(one.hold(100));
    EXPECT_FALSE(one.hold(101));
    EXPECT_TRUE(one.hold(100)); // what was refused changed nothing
}

TEST(TcpBudget, GetsMemoryBackWhenAShareShrinksOrEnds) {
    EventLoop loop;
    auto const budget = std::make_shared<TcpBudget>(loop, 100, 10);
    int evicted = 0;
    TcpBudget::Share one(budget, [&] { ++evicted; });
    {
        TcpBudget::Share two(budget, [&] { ++evicted; });
        EXPECT_TRUE(one.hold(60));
        EXPECT_TRUE(one.hold(30));
        EXPECT_TRUE(two.hold(70));
    }
    EXPECT_TRUE(one.hold(100));
    EXPECT_EQ(evicted, 0);
}

TEST(TcpBudget, EvictsTheLargestShareWhicheverAsks) {
    EventLoop loop;
    auto const budget = std::make_shared<TcpBudget>(loop, 100, 10);
    std::string evicted;
    TcpBudget::Share small(budget, [&] { evicted += "small "; });
    TcpBudget::Share large(budget, [&] { evicted += "large "; });
    TcpBudget::Share asking(budget, [&] { evicted += "asking "; });
    EXPECT_TRUE(small.hold(20));
    EXPECT_TRUE(large.hold(60));
    EXPECT_TRUE(asking.hold(30));
    EXPECT_EQ(evicted, "large ");
    EXPECT_FALSE(asking.hold(90)); // now it is the largest itself
    EXPECT_EQ(evicted, "large ");
    EXPECT_TRUE(asking.hold(80));
}

TEST(TcpBudget, GrantsEverythingToAShareWithoutABudget) {
    TcpBudget::Share share(nullptr, [] {});
    EXPECT_TRUE(share.hold(std::size_t{1} << 30U));
}

TEST(Allowance, AllowsABurstAndThenARate) {
    Allowance allowance(2, 1);
    auto now = Allowance::Clock::now();
    EXPECT_TRUE(allowance.take(now));
    EXPECT_TRUE(allowance.take(now));
    EXPECT_FALSE(allowance.take(now));
    EXPECT_FALSE(allowance.take(now + std::chrono::milliseconds(500)));
    EXPECT_TRUE(allowance.take(now + std::chrono::milliseconds(1000)));
    EXPECT_FALSE(allowance.take(now + std::chrono::milliseconds(1000)));
    now += std::chrono::hours(1); // an allowance that is not used does not grow
    EXPECT_TRUE(allowance.take(now));
    EXPECT_TRUE(allowance.take(now));
    EXPECT_FALSE(allowance.take(now));
}

TEST(AvailableMemory, IsNotMoreThanTheProcessMayHave) {
    auto const now = availableMemory();
    EXPECT_GE(now, std::size_t{1} << 20U);
    auto const limited = inChildProcess([now] {
        rlimit limit{};
        ::getrlimit(RLIMIT_AS, &limit);
        limit.rlim_cur = now - 4096;
        ::setrlimit(RLIMIT_AS, &limit);
        return std::to_string(availableMemory());
    });
    EXPECT_EQ(limited, std::to_string(now - 4096));
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
    EXPECT_EQ(called, 1);
}

} // namespace
