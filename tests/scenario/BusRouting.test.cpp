#include "platform/libio/TcpListener.h"
#include "platform/libio/connectTcp.h"
#include "platform/libmessage_bus/MessageBus.h"
#include "tests/scenario/runLoop.h"
#include "tests/unit/LogCapture.h"
#include "zwave/libquillet/CliDisplayMsg.h"
#include "zwave/libquillet/Confirmable.h"
#include "zwave/libquillet/PingMsg.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::Contains;
using testing::StartsWith;

/// The bus of one client, connected to the server under test.
struct Client {
    explicit Client(EventLoop& loop) : bus(loop) {}

    MessageBus bus;
    PeerId server{};   // as the client's bus names the server
    PeerId atServer{}; // as the server's bus names the client
    std::vector<std::string> events;
};

/// A server's bus and its clients, all on one loop.
class Bus : public testing::Test {
protected:
    Client& addClient() {
        auto& client = *clients_.emplace_back(std::make_unique<Client>(loop_));
        connectTcp(loop_, "127.0.0.1", listener_.local().port(), seconds(20), TcpLimits(),
                   [this, &client](std::optional<TcpConnection> connection, std::string const&) {
                       client.server = client.bus.attach(std::move(*connection));
                       if (accepted_) { loop_.stop(); }
                   });
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

    /// What has been sent to the client before has arrived once this has been answered.
    void waitFor(Client& client) { ask(client, boost::make_shared<Confirmable>()); }

    void echoPings() {
        server_.handle<PingMsg>(
            [this](auto const& request, PeerId) { server_.answer(PingMsg::create(request, ZResult::success, 7)); });
    }

    EventLoop loop_;
    std::vector<std::string> left_;
    MessageBus server_{loop_, {{}, [this](PeerId, std::string const& reason) {
                                   left_.push_back(reason);
                                   loop_.stop();
                               }}};
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

TEST_F(Bus, BringsTheAnswerToItsRequest) {
    echoPings();
    auto const request = newPing();
    auto const answer = ask(addClient(), request);
    EXPECT_EQ(request->id(), answer->correlation());
    EXPECT_EQ(TResult::success, answer->result());
    EXPECT_EQ(7U, boost::dynamic_pointer_cast<PingMsg>(answer)->latencyMs());
}

TEST_F(Bus, GivesEachMessageItsPeersAddressAsSource) {
    TMessage::Endpoint source;
    server_.handle<PingMsg>([&](auto const& request, PeerId) {
        source = request->source();
        server_.answer(PingMsg::create(request, ZResult::success, 7));
    });
    auto const answer = ask(addClient(), newPing());
    EXPECT_EQ("127.0.0.1", source.address().to_string());
    EXPECT_NE(listener_.local(), source);
    EXPECT_EQ(listener_.local(), answer->source());
}

TEST_F(Bus, BringsAnswersToTheirAskersInWhateverOrderTheyAreGiven) {
    std::vector<boost::shared_ptr<PingMsg>> requests;
    server_.handle<PingMsg>([&](auto const& request, PeerId) {
        requests.push_back(request);
        if (requests.size() == 3) {
            for (auto it = requests.rbegin(); it != requests.rend(); ++it) {
                server_.answer(PingMsg::create(*it, ZResult::success, (*it)->destination().nodeId()));
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
    EXPECT_EQ((std::vector<unsigned int>{1, 2, 3}), answers);
}

TEST_F(Bus, TellsTwoAskersOfTheSameIdentityApart) {
    std::vector<boost::shared_ptr<PingMsg>> requests;
    server_.handle<PingMsg>([&](auto const& request, PeerId) {
        requests.push_back(request);
        if (requests.size() == 2) {
            for (auto it = requests.rbegin(); it != requests.rend(); ++it) {
                server_.answer(PingMsg::create(*it, ZResult::success, (*it)->source().port()));
            }
        }
    });
    auto const request = newPing();
    int right = 0;
    int answers = 0;
    for (int i = 0; i < 2; ++i) {
        auto& client = addClient();
        client.bus.request(client.server, request, seconds(20), [&](MessageBus::ConfirmablePtr const& it) {
            auto const answer = boost::dynamic_pointer_cast<PingMsg>(it);
            std::ostringstream text;
            answer->print(text);
            auto const own = "\"source_\":\"127.0.0.1:" + std::to_string(answer->latencyMs()) + '"';
            right += answer->result() == ZResult::success ? 1 : 0;
            if (++answers == 2) { loop_.stop(); }
        });
    }
    runLoop(loop_);
    EXPECT_EQ(2, right);
}

TEST_F(Bus, AnswersARequestThatIsLateWithTimeout) {
    server_.handle<PingMsg>([](auto const&, PeerId) {});
    auto const request = newPing();
    auto const answer = ask(addClient(), request, milliseconds(20));
    EXPECT_EQ(TResult::timeout, answer->result());
    EXPECT_EQ(5, answer->result());
    EXPECT_EQ("PingMsg", answer->name());
    EXPECT_EQ(request->id(), answer->correlation());
    EXPECT_NE(request->id(), answer->id());
    EXPECT_EQ(5, boost::dynamic_pointer_cast<PingMsg>(answer)->destination().nodeId());
}

TEST_F(Bus, DropsAndLogsAnAnswerThatComesTooLate) {
    boost::shared_ptr<PingMsg> held;
    server_.handle<PingMsg>([&](auto const& request, PeerId) {
        // The first one's answer waits for the second one.
        if (held) { server_.answer(PingMsg::create(held, ZResult::success, 1)); }
        if (held) { server_.answer(PingMsg::create(request, ZResult::success, 2)); }
        held = request;
    });
    auto& client = addClient();
    auto const first = newPing();
    EXPECT_EQ(TResult::timeout, ask(client, first, milliseconds(20))->result());
    auto const second = boost::dynamic_pointer_cast<PingMsg>(ask(client, newPing()));
    EXPECT_EQ(2U, second->latencyMs());
    EXPECT_THAT(log_.lines(), Contains(StartsWith("WARN MessageBus: late answer dropped: PingMsg ")));
}

TEST_F(Bus, AnswersTheRequestsToAPeerThatGoesWithFailure) {
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
    EXPECT_EQ((std::vector<TResult::Enum>{TResult::failure, TResult::failure}), results);
    EXPECT_EQ(TResult::failure, ask(client, newPing())->result()); // nor can a peer that is gone be asked
}

TEST_F(Bus, ForgetsTheRequestsOfAPeerThatGoes) {
    std::vector<boost::shared_ptr<PingMsg>> requests;
    server_.handle<PingMsg>([&](auto const& request, PeerId) {
        requests.push_back(request);
        loop_.stop();
    });
    auto& client = addClient();
    client.bus.request(client.server, newPing(), seconds(20), [](auto const&) {});
    runLoop(loop_);
    client.bus.disconnect(client.server);
    runLoop(loop_);
    EXPECT_EQ((Strings{"closed by the peer"}), left_);
    EXPECT_EQ(0U, server_.peerCount());
    server_.answer(PingMsg::create(requests.at(0), ZResult::success, 1)); // goes nowhere, and harms nobody
    echoPings();
    EXPECT_EQ(TResult::success, ask(addClient(), newPing())->result());
}

TEST_F(Bus, RefusesARequestThatIsWaitingAlready) {
    auto& client = addClient();
    auto const request = newPing();
    client.bus.request(client.server, request, seconds(20), [](auto const&) {});
    EXPECT_THROW(client.bus.request(client.server, request, seconds(20), [](auto const&) {}), std::invalid_argument);
}

TEST_F(Bus, RejectsARequestThatNobodyHandles) {
    auto const answer = ask(addClient(), newPing());
    EXPECT_EQ(TResult::rejected, answer->result());
    EXPECT_EQ("PingMsg", answer->name());
    EXPECT_THAT(log_.lines(), Contains("WARN MessageBus: nobody handles PingMsg"));
}

TEST_F(Bus, NeverAnswersAnAnswer) {
    auto& client = addClient();
    auto const answer = newPing();
    answer->setResponse(TMessage());
    client.bus.send(client.server, answer);
    waitFor(client);
    EXPECT_THAT(log_.lines(), Contains("WARN MessageBus: nobody waits for PingMsg"));
    auto const lines = log_.lines();
    EXPECT_EQ(0, std::count(lines.begin(), lines.end(), "WARN MessageBus: nobody handles PingMsg"));
}

TEST_F(Bus, AnswersARequestWhoseHandlerThrowsWithFailure) {
    server_.handle<PingMsg>([](auto const&, PeerId) { throw std::runtime_error("out of order"); });
    EXPECT_EQ(TResult::failure, ask(addClient(), newPing())->result());
    EXPECT_THAT(log_.lines(), Contains(testing::HasSubstr("cannot handle PingMsg")));
}

TEST_F(Bus, LogsWhatAListenerThrowsAndGoesOn) {
    server_.listen<CliDisplayMsg>([](auto const&, PeerId) { throw std::runtime_error("out of order"); });
    auto& client = addClient();
    client.bus.send(client.server, boost::make_shared<CliDisplayMsg>());
    waitFor(client);
    EXPECT_THAT(log_.lines(), Contains(testing::HasSubstr("cannot handle CliDisplayMsg")));
}

TEST_F(Bus, RejectsWhatComesOnTopOfTooManyUnansweredRequests) {
    std::vector<boost::shared_ptr<PingMsg>> requests;
    server_.handle<PingMsg>([&](auto const& request, PeerId) { requests.push_back(request); });
    auto& client = addClient();
    std::vector<TResult::Enum> results;
    for (std::size_t i = 0; i <= MessageBus::unansweredLimit; ++i) {
        client.bus.request(client.server, newPing(), seconds(60), [&](MessageBus::ConfirmablePtr const& answer) {
            results.push_back(answer->result());
            loop_.stop();
        });
    }
    runLoop(loop_);
    EXPECT_EQ((std::vector<TResult::Enum>{TResult::rejected}), results);
    EXPECT_EQ(10000U, requests.size());
    // One answer makes room for one request.
    server_.answer(PingMsg::create(requests.front(), ZResult::success, 1));
    runLoop(loop_);
    EXPECT_EQ(TResult::success, results.at(1));
    EXPECT_EQ(TResult::timeout, ask(client, newPing(), milliseconds(200))->result());
    EXPECT_EQ(10001U, requests.size());
}

TEST_F(Bus, BringsEventsToThosePeersThatSubscribed) {
    auto& first = addClient();
    auto& second = addClient();
    auto& third = addClient();
    server_.subscribe(first.atServer, "quit");
    server_.subscribe(first.atServer, "quit"); // twice is once
    server_.subscribe(second.atServer, "quit");
    server_.subscribe(third.atServer, "start");
    server_.unsubscribe(second.atServer, "quit");
    server_.publish("quit", boost::make_shared<CliDisplayMsg>());
    for (auto* const client : {&first, &second, &third}) { waitFor(*client); }
    EXPECT_EQ((Strings{"CliDisplayMsg"}), first.events);
    EXPECT_EQ(Strings(), second.events);
    EXPECT_EQ(Strings(), third.events);
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
    EXPECT_EQ((Strings{"received PingMsg", "sent PingMsg"}), seen);
    EXPECT_EQ((Strings{"CliDisplayMsg", "CliDisplayMsg"}), observer.events);
    server_.unobserve(observer.atServer);
    ask(other, newPing());
    waitFor(observer);
    EXPECT_EQ(2U, observer.events.size());
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
    EXPECT_EQ(1U, left_.size());
    EXPECT_EQ(TResult::success, ask(other, newPing())->result());
    EXPECT_EQ(0, copies);
}

TEST_F(Bus, LogsABadLineAndGivesItToItsHandler) {
    std::vector<std::string> complaints;
    MessageBus strict(loop_, {[&](PeerId, BadMessageError const& error) {
                                  complaints.push_back(error.what());
                                  loop_.stop();
                              },
                              {}});
    TcpListener const listener(loop_, {boost::asio::ip::address_v4::loopback(), 0}, TcpLimits(),
                               [&](TcpConnection it) { strict.attach(std::move(it)); });
    std::optional<TcpConnection> client;
    connectTcp(loop_, "127.0.0.1", listener.local().port(), seconds(20), TcpLimits(),
               [&](std::optional<TcpConnection> connection, std::string const&) {
                   client.emplace(std::move(*connection));
                   client->send("{}");
               });
    runLoop(loop_);
    EXPECT_EQ(1U, complaints.size());
    EXPECT_THAT(log_.lines(), Contains(testing::HasSubstr("bad line from 127.0.0.1:")));
}

} // namespace
