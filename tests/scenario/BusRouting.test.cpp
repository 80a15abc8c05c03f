// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/TcpBudget.h"
#include "platform/libio/TcpListener.h"
#include "platform/libio/connectTcp.h"
#include "platform/libmessage_bus/MessageBus.h"
#include "tests/scenario/LineClient.h"
#include "tests/scenario/runLoop.h"
#include "tests/support/LogCapture.h"
#include "zwave/libquillet/CliDisplayMsg.h"
#include "zwave/libquillet/Confirmable.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/SubscribeMsg.h"
#include "zwave/libquillet/VersionMsg.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <time.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::Contains;
using testing::IsEmpty;
using testing::StartsWith;

/// The bus of one client, connected to the server under test.
struct Client {
    explicit Client(EventLoop& loop) : bus(loop) {}

    MessageBus bus;
    PeerId server{};   // as the client's bus names the server
    PeerId atServer{}; // as the server's bus names the client
    std::vector<std::string> events;
};

/// A request that waits for its answer, and who asked.
struct Request {
    boost::shared_ptr<PingMsg> ping;
    PeerId from;
};

/// A server's bus and its clients, all on one loop.
class Bus : public testing::Test {
protected:
    Client& addClient(unsigned short port = 0) {
        auto& client = *clients_.emplace_back(std::make_unique<Client>(loop_));
        ConnectHandlers handlers;
        handlers.connected = [this, &client](TcpConnection connection) {
            client.server = client.bus.attach(std::move(connection));
            if (accepted_) { loop_.stop(); }
        };
        connectTcp(loop_, "127.0.0.1", port != 0 ? port : listener_.local().port(), seconds(20), TcpLimits(),
                   std::move(handlers));
        accepted_.reset();
        onAccepted_ = [this, &client] {
            if (client.server != PeerId{}) { loop_.stop(); }
        };
        runLoop(loop_);
        client.atServer = *accepted_;
        client.bus.listen<CliDisplayMsg>(
            [&client](auto const& message, PeerId) { client.events.push_back(message->name()); });
        return client;
    }

    boost::shared_ptr<TConfirmable> ask(Client& client, boost::shared_ptr<TConfirmable> const& request,
                                        milliseconds deadline = seconds(20)) {
        boost::shared_ptr<TConfirmable> answer;
        client.bus.request(client.server, request, deadline, [&](MessageBus::ConfirmablePtr const& it) {
            answer = it;
            loop_.stop();
        });
        runLoop(loop_);
        return answer;
    }

    /// Waits until everything that was sent to the client before has arrived.
    void waitFor(Client& client) { ask(client, boost::make_shared<Confirmable>()); }

    void echoPings() {
        server_.handle<PingMsg>([this](auto const& request, PeerId from) {
            server_.answer(from, PingMsg::create(request, ZResult::success, 7));
        });
    }

    MessageBus::Handlers serverHandlers() {
        MessageBus::Handlers handlers;
        handlers.left = [this](PeerId, std::string const& reason) {
            left_.push_back(reason);
            loop_.stop();
        };
        return handlers;
    }

    EventLoop loop_;
    std::vector<std::string> left_;
    MessageBus server_{loop_, serverHandlers()};
    std::optional<PeerId> accepted_;
    std::function<void()> onAccepted_;
    TcpListener listener_{loop_, {boost::asio::ip::address_v4::loopback(), 0}, TcpLimits(), [this](TcpConnection it) {
                              accepted_ = server_.attach(std::move(it));
                              onAccepted_();
                          }};
    std::vector<std::unique_ptr<Client>> clients_;
    LogCapture log_;
};

using Strings = std::vector<std::string>;

auto newPing() { return PingMsg::create(ZwaveAddress(1, 5)); }

unsigned int numberOf(PeerId peer) { return static_cast<unsigned int>(peer); }

TEST_F(Bus, BringsTheAnswerToItsRequest) {
    echoPings();
    auto const request = newPing();
    auto const answer = ask(addClient(), request);
    EXPECT_EQ(answer->correlation(), request->id());
    EXPECT_EQ(answer->result(), TResult::success);
    EXPECT_EQ(boost::dynamic_pointer_cast<PingMsg>(answer)->latencyMs(), 7U);
}

TEST_F(Bus, GivesEachMessageItsPeersAddressAsSource) {
    TMessage::Endpoint source;
    server_.handle<PingMsg>([&](auto const& request, PeerId from) {
        source = request->source();
        server_.answer(from, PingMsg::create(request, ZResult::success, 7));
    });
    auto const answer = ask(addClient(), newPing());
    EXPECT_EQ(source.address().to_string(), "127.0.0.1");
    EXPECT_NE(source, listener_.local());
    EXPECT_EQ(answer->source(), listener_.local());
}

TEST_F(Bus, BringsAnswersToTheirAskersInWhateverOrderTheyAreGiven) {
    std::vector<Request> requests;
    server_.handle<PingMsg>([&](auto const& request, PeerId from) {
        requests.push_back({request, from});
        if (requests.size() == 3) {
            for (auto it = requests.rbegin(); it != requests.rend(); ++it) {
                server_.answer(it->from, PingMsg::create(it->ping, ZResult::success, it->ping->destination().nodeId()));
            }
        }
    });
    std::vector<unsigned int> answers(3);
    std::size_t count = 0;
    for (unsigned char node = 1; node <= 3; ++node) {
        auto& client = addClient();
        client.bus.request(client.server, PingMsg::create(ZwaveAddress(1, node)), seconds(20),
                           [&, node](MessageBus::ConfirmablePtr const& answer) {
                               answers[node - 1U] = boost::dynamic_pointer_cast<PingMsg>(answer)->latencyMs();
                               if (++count == 3) { loop_.stop(); }
                           });
    }
    runLoop(loop_);
    EXPECT_EQ(answers, (std::vector<unsigned int>{1, 2, 3}));
}

TEST_F(Bus, TellsTwoAskersOfTheSameIdentityApart) {
    std::vector<Request> requests;
    server_.handle<PingMsg>([&](auto const& request, PeerId from) {
        requests.push_back({request, from});
        if (requests.size() == 2) {
            for (auto it = requests.rbegin(); it != requests.rend(); ++it) {
                server_.answer(it->from, PingMsg::create(it->ping, ZResult::success, numberOf(it->from)));
            }
        }
    });
    auto const request = newPing();
    std::vector<unsigned int> askers;
    std::vector<unsigned int> answers(2);
    std::size_t count = 0;
    for (auto& answer : answers) {
        auto& client = addClient();
        askers.push_back(numberOf(client.atServer));
        client.bus.request(client.server, request, seconds(20), [&](MessageBus::ConfirmablePtr const& it) {
            answer = boost::dynamic_pointer_cast<PingMsg>(it)->latencyMs();
            if (++count == 2) { loop_.stop(); }
        });
    }
    runLoop(loop_);
    EXPECT_NE(askers[0], askers[1]);
    EXPECT_EQ(answers, askers);
}

TEST_F(Bus, AnswersWithTimeoutWhenNoAnswerComesInTime) {
    server_.handle<PingMsg>([](auto const&, PeerId) {});
    auto const request = newPing();
    auto const answer = ask(addClient(), request, milliseconds(20));
    EXPECT_EQ(answer->result(), TResult::timeout);
    EXPECT_EQ(answer->result(), 5);
    EXPECT_EQ(answer->name(), "PingMsg");
    EXPECT_EQ(answer->correlation(), request->id());
    EXPECT_NE(answer->id(), request->id());
    EXPECT_EQ(boost::dynamic_pointer_cast<PingMsg>(answer)->destination().nodeId(), 5);
}

TEST_F(Bus, DropsAndLogsAnAnswerThatComesTooLate) {
    boost::shared_ptr<PingMsg> held;
    server_.handle<PingMsg>([&](auto const& request, PeerId from) {
        // The first one's answer waits for the second one.
        if (held) { server_.answer(from, PingMsg::create(held, ZResult::success, 1)); }
        if (held) { server_.answer(from, PingMsg::create(request, ZResult::success, 2)); }
        held = request;
    });
    auto& client = addClient();
    auto const first = newPing();
    EXPECT_EQ(ask(client, first, milliseconds(20))->result(), TResult::timeout);
    auto const second = boost::dynamic_pointer_cast<PingMsg>(ask(client, newPing()));
    EXPECT_EQ(second->latencyMs(), 2U);
    EXPECT_THAT(log_.lines(), Contains(StartsWith("WARN MessageBus: late answer dropped: PingMsg ")));
}

TEST_F(Bus, AnswersRequestsWithFailureWhenTheirPeerGoes) {
    server_.handle<PingMsg>([&](auto const&, PeerId from) { server_.disconnect(from); });
    auto& client = addClient();
    std::vector<TResult::Enum> results;
    auto const answered = [&](MessageBus::ConfirmablePtr const& answer) {
        results.push_back(answer->result());
        if (results.size() == 2) { loop_.stop(); }
    };
    client.bus.request(client.server, newPing(), seconds(20), answered);
    client.bus.request(client.server, newPing(), seconds(20), answered);
    left_.clear();
    while (results.size() < 2) { runLoop(loop_); }
    EXPECT_EQ(results, (std::vector<TResult::Enum>{TResult::failure, TResult::failure}));
    EXPECT_EQ(ask(client, newPing())->result(), TResult::failure); // a peer that is gone cannot be asked
}

TEST_F(Bus, ForgetsTheRequestsOfAPeerThatGoes) {
    std::vector<Request> requests;
    server_.handle<PingMsg>([&](auto const& request, PeerId from) {
        requests.push_back({request, from});
        loop_.stop();
    });
    auto& client = addClient();
    client.bus.request(client.server, newPing(), seconds(20), [](auto const&) {});
    runLoop(loop_);
    client.bus.send(client.server, boost::make_shared<CliDisplayMsg>()); // on its way when the peer goes
    server_.disconnect(client.atServer);
    runLoop(loop_);
    EXPECT_EQ(left_, (Strings{"closed here"}));
    server_.answer(requests.at(0).from,
                   PingMsg::create(requests.at(0).ping, ZResult::success, 1)); // goes nowhere, and harms nobody
    echoPings();
    EXPECT_EQ(ask(addClient(), newPing())->result(), TResult::success);
}

/// Processor time of this thread, which a busy machine does not add to.
double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

TEST_F(Bus, ForgetsAPeerWithoutLookingAtTheRequestsThatWaitForOthers) {
    // These peers say nothing, so that little but the bus's own work is measured.
    auto const timeOfPeersThatComeAndGo = [this] {
        onAccepted_ = [this] { server_.disconnect(*accepted_); };
        auto const start = processorSeconds();
        for (int i = 0; i < 300; ++i) {
            LineClient const client(listener_.local().port());
            runLoop(loop_); // until the server knows that it has gone
        }
        return processorSeconds() - start;
    };
    auto const alone = timeOfPeersThatComeAndGo();
    LineClient const busy(listener_.local().port());
    onAccepted_ = [this] { loop_.stop(); };
    runLoop(loop_);
    auto const asked = *accepted_;
    for (int i = 0; i < 10000; ++i) {
        server_.request(asked, newPing(), seconds(600), [](auto const&) {});
    }
    auto const besideMany = timeOfPeersThatComeAndGo();
    EXPECT_LT(besideMany, 3 * alone) << alone << " s, " << besideMany << " s";
}

TEST_F(Bus, RefusesARequestThatIsWaitingAlready) {
    auto& client = addClient();
    auto const request = newPing();
    client.bus.request(client.server, request, seconds(20), [](auto const&) {});
    EXPECT_THROW(client.bus.request(client.server, request, seconds(20), [](auto const&) {}), std::invalid_argument);
}

TEST_F(Bus, RejectsARequestThatNobodyHandlesWithAnEmptyMessageOfItsClass) {
    auto const request = newPing();
    auto const answer = boost::dynamic_pointer_cast<PingMsg>(ask(addClient(), request));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->result(), TResult::rejected);
    EXPECT_EQ(answer->correlation(), request->id());
    EXPECT_EQ(answer->destination().nodeId(), 0);
    EXPECT_THAT(log_.lines(), Contains(StartsWith("WARN MessageBus: nobody handles PingMsg from 127.0.0.1:")));
}

TEST_F(Bus, NeverAnswersAnAnswer) {
    auto& client = addClient();
    auto const answer = newPing();
    answer->setResponse(TMessage());
    client.bus.send(client.server, answer);
    waitFor(client);
    EXPECT_THAT(log_.lines(), Contains(StartsWith("WARN MessageBus: nobody waits for PingMsg from 127.0.0.1:")));
    EXPECT_THAT(log_.lines(), testing::Not(Contains(testing::HasSubstr("nobody handles PingMsg"))));
}

TEST_F(Bus, NeverHandsAnAnswerToTheHandlerOfRequests) {
    int handled = 0;
    server_.handle<PingMsg>([&](auto const&, PeerId) { ++handled; });
    auto& client = addClient();
    auto const answer = newPing();
    answer->setResponse(TMessage());
    client.bus.send(client.server, answer);
    waitFor(client);
    EXPECT_EQ(handled, 0);
}

TEST_F(Bus, DoesNotRejectWhatCarriesNoHeader) {
    auto& client = addClient();
    server_.send(client.atServer, VersionMsg::create("1.0"));
    client.bus.send(client.server, VersionMsg::create("1.0"));
    waitFor(client);
    waitFor(client);
    auto const lines = log_.lines();
    EXPECT_EQ(
        std::count_if(lines.begin(), lines.end(),
                      [](auto const& line) { return line.find("nobody handles VersionMsg") != std::string::npos; }),
        2);
}

TEST_F(Bus, TakesTheNextMessageOfItsClassAsTheAnswerToARequestWithoutAHeader) {
    server_.listen<VersionMsg>([this](auto const&, PeerId from) { server_.send(from, VersionMsg::create("1.7")); });
    auto const answer = boost::dynamic_pointer_cast<VersionMsg>(ask(addClient(), VersionMsg::create("1.0")));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->protocolVersion(), "1.7");
}

TEST_F(Bus, TakesNoMessageOfAnotherClassAsTheAnswerToARequestWithoutAHeader) {
    auto& client = addClient();
    auto& other = addClient();
    int answers = 0;
    client.bus.request(client.server, newPing(), seconds(20), [&](auto const&) { ++answers; });
    client.bus.request(client.server, VersionMsg::create("1.0"), seconds(20), [&](auto const&) { answers += 10; });
    server_.send(other.atServer, VersionMsg::create("1.0"));
    waitFor(client);
    EXPECT_EQ(answers, 1); // the ping was rejected; another peer's version answers nothing here
}

TEST_F(Bus, TakesAnAnswerOnlyFromThePeerThatWasAsked) {
    auto& asked = addClient();
    auto& stranger = addClient();
    asked.bus.listen<PingMsg>([](auto const&, PeerId) {});
    auto const request = newPing();
    int answers = 0;
    server_.request(asked.atServer, request, seconds(20), [&](MessageBus::ConfirmablePtr const&) { ++answers; });
    stranger.bus.send(stranger.server, PingMsg::create(request, ZResult::success, 1));
    waitFor(stranger);
    EXPECT_EQ(answers, 0);
    EXPECT_THAT(log_.lines(), Contains(StartsWith("WARN MessageBus: nobody waits for PingMsg from")));
    asked.bus.send(asked.server, PingMsg::create(request, ZResult::success, 1));
    waitFor(asked);
    EXPECT_EQ(answers, 1);
}

TEST_F(Bus, RecognisesTheLatestLateAnswersAndForgetsTheOldest) {
    auto& client = addClient();
    std::vector<boost::shared_ptr<PingMsg>> requests;
    std::size_t late = 0;
    auto const count = MessageBus::expiredLimit + 1;
    auto const stopAtTheLast = [&] {
        if (late == count && requests.size() == count) { loop_.stop(); }
    };
    client.bus.listen<PingMsg>([&](auto const& request, PeerId) {
        requests.push_back(request);
        stopAtTheLast();
    });
    for (std::size_t i = 0; i < count; ++i) {
        server_.request(client.atServer, newPing(), milliseconds(1), [&](auto const&) {
            ++late;
            stopAtTheLast();
        });
    }
    runLoop(loop_);
    auto const answerLate = [&](PingMsg const& request) {
        log_.clear();
        auto const answer = newPing();
        answer->setResponse(request);
        client.bus.send(client.server, answer);
        waitFor(client);
        return log_.lines();
    };
    EXPECT_THAT(answerLate(*requests[0]), Contains(StartsWith("WARN MessageBus: nobody waits for PingMsg from")));
    EXPECT_THAT(answerLate(*requests[1]), Contains(StartsWith("WARN MessageBus: late answer dropped: PingMsg ")));
    EXPECT_THAT(answerLate(*requests[1]), Contains(StartsWith("WARN MessageBus: nobody waits for PingMsg from")));
}

TEST_F(Bus, AnswersWithFailureWhereTheAnswerIsLongerThanALineMayBe) {
    TcpLimits limits;
    limits.line = 2000;
    TcpListener const strict(loop_, {boost::asio::ip::address_v4::loopback(), 0}, limits, [this](TcpConnection it) {
        accepted_ = server_.attach(std::move(it));
        onAccepted_();
    });
    server_.handle<SubscribeMsg>([this](auto const& request, PeerId from) {
        auto const answer = SubscribeMsg::create(false, std::string(2000, 'x'));
        answer->setResponse(*request);
        server_.answer(from, answer);
    });
    auto const request = SubscribeMsg::create(false, "Quit");
    auto const answer = boost::dynamic_pointer_cast<SubscribeMsg>(ask(addClient(strict.local().port()), request));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->result(), TResult::failure);
    EXPECT_TRUE(answer->events().empty());
    EXPECT_THAT(log_.lines(), Contains(StartsWith("WARN MessageBus: cannot write SubscribeMsg: a line of ")));
}

TEST_F(Bus, AnswersWithFailureWhereTheAnswerCannotBeWritten) {
    server_.handle<SubscribeMsg>([this](auto const& request, PeerId from) {
        auto const answer = SubscribeMsg::create(false, "\xff");
        answer->setResponse(*request);
        server_.answer(from, answer);
    });
    EXPECT_EQ(ask(addClient(), SubscribeMsg::create(false, "Quit"))->result(), TResult::failure);
    EXPECT_THAT(log_.lines(), Contains(StartsWith("WARN MessageBus: cannot write SubscribeMsg: ")));
}

TEST_F(Bus, DoesNotAnswerWhatIsOnlyListenedTo) {
    int heard = 0;
    server_.listen<PingMsg>([&](auto const&, PeerId) { ++heard; });
    EXPECT_EQ(ask(addClient(), newPing(), milliseconds(50))->result(), TResult::timeout);
    EXPECT_EQ(heard, 1);
}

TEST_F(Bus, GivesAPeerThatEndsItsOutputTheRestOfItsAnswers) {
    std::vector<Request> requests;
    server_.handle<PingMsg>([&](auto const& request, PeerId from) {
        requests.push_back({request, from});
        loop_.stop();
    });
    LineClient client(listener_.local().port());
    onAccepted_ = [] {};
    client.send(pingLine(1) + '\n' + pingLine(2) + '\n');
    client.endOutput();
    while (requests.size() < 2) { runLoop(loop_); }
    server_.answer(requests[1].from, PingMsg::create(requests[1].ping, ZResult::success, 1));
    loop_.post([&] {
        EXPECT_TRUE(left_.empty());
        server_.answer(requests[0].from, PingMsg::create(requests[0].ping, ZResult::success, 2));
    });
    runLoop(loop_);
    EXPECT_EQ(left_, (Strings{"closed by the peer"}));
    EXPECT_TRUE(client.endsAfter(2));
}

TEST_F(Bus, DisconnectsAPeerWithTooManyBadLines) {
    LineClient client(listener_.local().port());
    onAccepted_ = [] {};
    client.send(std::string(MessageBus::badLineLimit + 50, '\n'));
    std::thread peer([&client] { // closes once it has seen the end
        EXPECT_TRUE(client.endsAfter(0));
        client.close();
    });
    runLoop(loop_);
    peer.join();
    EXPECT_EQ(left_, (Strings{"too many bad lines"}));
    auto const lines = log_.lines();
    auto const isBadLine = [](auto const& line) { return line.find("bad line: ") != std::string::npos; };
    EXPECT_LE(std::count_if(lines.begin(), lines.end(), isBadLine), 10);
    EXPECT_THAT(lines, Contains(testing::MatchesRegex("WARN MessageBus: [0-9]* complaints about .* left out")));
}

TEST_F(Bus, LogsTheBadLinesOfManyPeersAtABoundedRate) {
    constexpr int peers = 60;
    constexpr int linesEach = 5; // so many of each peer are logged at once
    int handled = 0;
    MessageBus::Handlers handlers;
    handlers.badLine = [&](PeerId, BadMessageError const&) {
        if (++handled == peers * linesEach) { loop_.stop(); }
    };
    MessageBus strict(loop_, handlers);
    TcpListener const listener(loop_, {boost::asio::ip::address_v4::loopback(), 0}, TcpLimits(),
                               [&](TcpConnection it) { strict.attach(std::move(it)); });
    std::vector<std::unique_ptr<LineClient>> crowd;
    for (int i = 0; i < peers; ++i) {
        crowd.push_back(std::make_unique<LineClient>(listener.local().port()));
        crowd.back()->send(std::string(linesEach, '\n'));
    }
    runLoop(loop_);
    auto const lines = log_.lines();
    auto const logged = std::count_if(lines.begin(), lines.end(),
                                      [](auto const& line) { return line.find("bad line: ") != std::string::npos; });
    EXPECT_GE(logged, 50);
    EXPECT_LT(logged, 200); // those of all peers would be 300
}

TEST_F(Bus, DisconnectsAPeerThatDoesNotOpenInTime) {
    std::string reason;
    MessageBus::Handlers handlers;
    handlers.opening = [](PeerId, TMessage const&) { return std::string(); };
    handlers.left = [&](PeerId, std::string const& why) {
        reason = why;
        loop_.stop();
    };
    MessageBus strict(loop_, handlers, milliseconds(20));
    TcpListener const listener(loop_, {boost::asio::ip::address_v4::loopback(), 0}, TcpLimits(),
                               [&](TcpConnection it) { strict.attach(std::move(it)); });
    LineClient const client(listener.local().port());
    runLoop(loop_);
    EXPECT_EQ(reason, "did not open the connection in time");
}

TEST_F(Bus, KeepsAPeerThatOpenedInTime) {
    std::string reason;
    MessageBus::Handlers handlers;
    handlers.opening = [](PeerId, TMessage const&) { return std::string(); };
    handlers.left = [&](PeerId, std::string const& why) { reason = why; };
    MessageBus strict(loop_, handlers, milliseconds(200));
    TcpListener const listener(loop_, {boost::asio::ip::address_v4::loopback(), 0}, TcpLimits(),
                               [&](TcpConnection it) { strict.attach(std::move(it)); });
    LineClient client(listener.local().port());
    client.sendLine(versionLine());
    Timer const later(loop_, milliseconds(400), [&] { loop_.stop(); });
    runLoop(loop_);
    EXPECT_EQ(reason, "");
}

TEST_F(Bus, CountsTheMemoryOfRequestsThatWaitForTheirAnswer) {
    std::string reason;
    MessageBus::Handlers handlers;
    handlers.left = [&](PeerId, std::string const& why) {
        reason = why;
        loop_.stop();
    };
    MessageBus silent(loop_, handlers);
    silent.handle<PingMsg>([](auto const&, PeerId) {});
    TcpLimits limits;
    limits.budget = std::make_shared<TcpBudget>(loop_, 100000, 10);
    TcpListener const listener(loop_, {boost::asio::ip::address_v4::loopback(), 0}, limits,
                               [&](TcpConnection it) { silent.attach(std::move(it)); });
    LineClient client(listener.local().port());
    std::string requests;
    for (int i = 0; i < 400; ++i) { requests += pingLine(1) + '\n'; }
    client.send(requests);
    runLoop(loop_);
    EXPECT_EQ(reason, "holds the most memory of all");
}

TEST_F(Bus, DoesNotGiveAPeerTheAnswerToAnothersRequestOfTheSamePortAndIdentity) {
    std::vector<Request> requests;
    server_.handle<PingMsg>([&](auto const& request, PeerId from) {
        requests.push_back({request, from});
        loop_.stop();
    });
    auto const line = pingLine(1) + '\n';
    // Below those that the system gives to others meanwhile.
    auto const port = static_cast<unsigned short>(20000 + ::getpid() % 10000);
    auto first = std::make_unique<LineClient>(listener_.local().port(), 0, port);
    onAccepted_ = [] {};
    first->send(line);
    runLoop(loop_);
    first->reset();
    runLoop(loop_); // until the server knows
    LineClient second(listener_.local().port(), 0, port);
    second.send(line);
    runLoop(loop_);
    ASSERT_EQ(requests.size(), 2U);
    ASSERT_EQ(requests[0].ping->source(), requests[1].ping->source());
    server_.answer(requests[0].from, PingMsg::create(requests[0].ping, ZResult::success, 111));
    server_.answer(requests[1].from, PingMsg::create(requests[1].ping, ZResult::success, 222));
    loop_.post([this] { loop_.post([this] { loop_.stop(); }); });
    runLoop(loop_);
    EXPECT_EQ(boost::dynamic_pointer_cast<PingMsg>(second.receive())->latencyMs(), 222U);
}

TEST_F(Bus, AnswersARequestWhoseHandlerThrowsWithFailure) {
    server_.handle<PingMsg>([](auto const&, PeerId) { throw std::runtime_error("out of order"); });
    EXPECT_EQ(ask(addClient(), newPing())->result(), TResult::failure);
    EXPECT_THAT(log_.lines(), Contains("WARN MessageBus: cannot handle PingMsg: out of order"));
}

TEST_F(Bus, LogsWhatAListenerThrowsAndGoesOn) {
    server_.listen<CliDisplayMsg>([](auto const&, PeerId) { throw std::runtime_error("out of order"); });
    auto& client = addClient();
    client.bus.send(client.server, boost::make_shared<CliDisplayMsg>());
    waitFor(client);
    EXPECT_THAT(log_.lines(), Contains("WARN MessageBus: cannot handle CliDisplayMsg: out of order"));
}

TEST_F(Bus, RejectsWhatComesOnTopOfTooManyUnansweredRequests) {
    std::vector<Request> requests;
    server_.handle<PingMsg>([&](auto const& request, PeerId from) { requests.push_back({request, from}); });
    auto& client = addClient();
    std::vector<TResult::Enum> results;
    for (std::size_t i = 0; i <= MessageBus::unansweredLimit; ++i) {
        client.bus.request(client.server, newPing(), seconds(60), [&](MessageBus::ConfirmablePtr const& answer) {
            results.push_back(answer->result());
            loop_.stop();
        });
    }
    runLoop(loop_);
    EXPECT_EQ(results, (std::vector<TResult::Enum>{TResult::rejected}));
    EXPECT_EQ(requests.size(), 1000U);
    // One answer makes room for one request.
    server_.answer(requests.front().from, PingMsg::create(requests.front().ping, ZResult::success, 1));
    runLoop(loop_);
    EXPECT_EQ(results.at(1), TResult::success);
    EXPECT_EQ(ask(client, newPing(), milliseconds(200))->result(), TResult::timeout);
    EXPECT_EQ(requests.size(), 1001U);
}

TEST_F(Bus, BringsEventsToThosePeersThatSubscribed) {
    auto& first = addClient();
    auto& second = addClient();
    auto& third = addClient();
    server_.subscribe(first.atServer, "quit");
    server_.subscribe(first.atServer, "quit"); // a second time changes nothing
    server_.subscribe(second.atServer, "quit");
    server_.subscribe(third.atServer, "start");
    server_.unsubscribe(second.atServer, "quit");
    server_.publish("quit", boost::make_shared<CliDisplayMsg>());
    for (auto* const client : {&first, &second, &third}) { waitFor(*client); }
    EXPECT_EQ(first.events, (Strings{"CliDisplayMsg"}));
    EXPECT_THAT(second.events, IsEmpty());
    EXPECT_THAT(third.events, IsEmpty());
}

TEST_F(Bus, ShowsObserversTheTrafficOfOthersOnly) {
    echoPings();
    auto& observer = addClient();
    auto& other = addClient();
    Strings seen;
    server_.observe(observer.atServer, [&seen](Direction direction, MessageBus::MessagePtr const& message) {
        seen.push_back((direction == Direction::received ? "received " : "sent ") + message->name());
        return boost::make_shared<CliDisplayMsg>();
    });
    ask(other, newPing());
    waitFor(observer);
    EXPECT_EQ(seen, (Strings{"received PingMsg", "sent PingMsg"}));
    EXPECT_EQ(observer.events, (Strings{"CliDisplayMsg", "CliDisplayMsg"}));
    server_.unobserve(observer.atServer);
    ask(other, newPing());
    waitFor(observer);
    EXPECT_EQ(observer.events.size(), 2U);
}

TEST_F(Bus, ObserverThatGoesIsForgotten) {
    echoPings();
    auto& observer = addClient();
    auto& other = addClient();
    int copies = 0;
    server_.observe(observer.atServer, [&copies](Direction, MessageBus::MessagePtr const& message) {
        ++copies;
        return message;
    });
    observer.bus.disconnect(observer.server);
    runLoop(loop_);
    EXPECT_EQ(left_.size(), 1U);
    EXPECT_EQ(ask(other, newPing())->result(), TResult::success);
    EXPECT_EQ(copies, 0);
}

TEST_F(Bus, LogsABadLineAndGivesItToItsHandler) {
    std::vector<std::string> complaints;
    MessageBus::Handlers handlers;
    handlers.badLine = [&](PeerId, BadMessageError const& error) {
        complaints.push_back(error.what());
        loop_.stop();
    };
    MessageBus strict(loop_, handlers);
    TcpListener const listener(loop_, {boost::asio::ip::address_v4::loopback(), 0}, TcpLimits(),
                               [&](TcpConnection it) { strict.attach(std::move(it)); });
    std::optional<TcpConnection> client;
    ConnectHandlers connecting;
    connecting.connected = [&](TcpConnection connection) {
        client.emplace(std::move(connection));
        client->send("{}");
    };
    connectTcp(loop_, "127.0.0.1", listener.local().port(), seconds(20), TcpLimits(), std::move(connecting));
    runLoop(loop_);
    EXPECT_EQ(complaints.size(), 1U);
    EXPECT_THAT(log_.lines(), Contains(testing::MatchesRegex("WARN MessageBus: bad line: .*, from 127.0.0.1:[0-9]*")));
}

} // namespace
