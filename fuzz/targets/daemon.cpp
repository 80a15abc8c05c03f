// SPDX-License-Identifier: Apache-2.0
// A daemon, its simulated module, and up to three clients that send whatever lines they like.
//
// A line of the input that begins with "@" tells what happens: "@1" other clients, by number; "@+500" so many milliseconds
// pass; "@-" the client is gone; "@." it sends no more. Every other line is sent as it is. A client opens its connection
// by itself, unless "@!" stands before its first line.

#include "fuzz/FakeClock.h"
#include "fuzz/Target.h"
#include "fuzz/mutateWire.h"

#include "apps/zwaved/Daemon.h"
#include "apps/zwaved/ports.h"
#include "platform/libio/TcpSocket.h"
#include "platform/libtransport/readMessage.h"
#include "platform/libtransport/toText.h"
#include "tests/support/damagedTexts.h"
#include "zwave/libquillet/VersionMsg.h"
#include "zwave/libquillet/protocolVersion.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/local/connect_pair.hpp>
#include <boost/uuid/uuid_hash.hpp>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <memory>
#include <regex>
#include <sstream>

namespace zorv::fuzz {

namespace {

using Milliseconds = std::chrono::milliseconds;
using Socket = boost::asio::local::stream_protocol::socket;

modulesim::SimulatedNetwork network() {
    modulesim::SimulatedNetwork network;
    network.nvmSize = 16384;
    network.retransmission = Milliseconds(20);
    network.nodes.resize(3);
    for (std::size_t i = 0; i < network.nodes.size(); ++i) {
        network.nodes[i].id = static_cast<serialapi::NodeId>(i + 2);
        network.nodes[i].latency = Milliseconds(5);
    }
    network.nodes[1].dead = true;
    network.nodes[2].kind = modulesim::NodeKind::sleeping;
    network.nodes[2].wakeUpSeconds = 30;
    network.nodes[2].commandClasses = {0x72, 0x80, 0x84, 0x86};
    network.joining.resize(1);
    network.leaving.push_back({2, Milliseconds(300)});
    return network;
}

/// One end of a connection to the daemon.
class Client {
public:
    explicit Client(EventLoop& loop) : socket_(loop.context()) {}

    void connect(EventLoop& loop, daemon::Daemon& daemon) {
        Socket theirs(loop.context());
        boost::asio::local::connect_pair(socket_, theirs);
        socket_.non_blocking(true);
        daemon.welcome(TcpConnection(TcpSocket(std::move(theirs)), TcpLimits()));
    }

    bool isConnected() const { return socket_.is_open(); }
    void leave() { socket_.close(); }
    void endInput() {
        boost::system::error_code ignored;
        socket_.shutdown(Socket::shutdown_send, ignored);
    }

    void send(std::string const& line) {
        boost::system::error_code ignored;
        auto const text = line + '\n'; // which fits: the daemon reads whatever has been sent before
        socket_.write_some(boost::asio::buffer(text), ignored);
    }

    /// Takes what has come, and looks at each line; false where nothing has.
    bool hear() {
        if (!isConnected()) { return false; }
        boost::system::error_code error;
        auto const size = socket_.read_some(boost::asio::buffer(block_), error);
        unread_.append(block_.data(), size);
        for (auto end = unread_.find('\n'); end != std::string::npos; end = unread_.find('\n')) {
            look(unread_.substr(0, end));
            unread_.erase(0, end + 1);
        }
        return size > 0;
    }

private:
    static void look(std::string const& line) {
        try {
            auto const message = readMessage(line);
            expect(toText(*message) == line, "what the daemon says is written as it was: " + line);
        } catch (BadMessageError const& error) {
            expect(false, "what the daemon says is a message: " + line + '\n' + error.what());
        }
    }

    Socket socket_;
    std::array<char, 4096> block_{};
    std::string unread_;
};

class Story {
public:
    Story() : daemon_(loop_, daemon::simulatedPort(loop_, network()), "", "", [this] { hasEnded_ = true; }) {
        daemon_.open();
        pass(Milliseconds(3000)); // for the module to be known
    }

    void tell(std::string const& input) {
        std::istringstream lines(input);
        for (std::string line; !hasEnded_ && std::getline(lines, line);) {
            if (line.empty() || line[0] != '@') {
                say(line);
            } else {
                direct(line);
            }
        }
        pass(Milliseconds(1000));
        end();
    }

private:
    static constexpr std::size_t mostClients = 3;

    void say(std::string const& line) {
        auto& client = connected();
        if (client.isConnected()) { client.send(line); }
        turn();
    }

    void direct(std::string const& line) {
        auto const kind = line.size() > 1 ? line[1] : ' ';
        if (kind == '+') {
            constexpr long most = 100'000;
            pass(Milliseconds(std::min(most, std::max(0L, std::strtol(line.c_str() + 2, nullptr, 10)))));
        } else if (kind == '-') {
            connected().leave();
        } else if (kind == '.') {
            connected().endInput();
        } else if (kind == '!') {
            connect(false);
        } else {
            current_ = static_cast<unsigned char>(kind) % mostClients;
        }
        turn();
    }

    /// The client that has its turn; one that left stays away.
    Client& connected() {
        if (!clients_.at(current_)) { connect(true); }
        return *clients_.at(current_);
    }

    void connect(bool opens) {
        auto& client = clients_.at(current_);
        if (client) { return; }
        client = std::make_unique<Client>(loop_);
        client->connect(loop_, daemon_);
        if (opens) { client->send(toText(*VersionMsg::create(protocolVersion))); }
        turn();
    }

    /// Lets everything happen that can happen now; whether something has.
    bool turn() {
        bool hasWorked = false;
        for (bool works = true; works && !hasEnded_; hasWorked = hasWorked || works) {
            works = loop_.context().poll() > 0;
            for (auto const& client : clients_) { works = (client && client->hear()) || works; }
        }
        return hasWorked;
    }

    /// Lets time pass: in steps that become longer as long as nothing happens.
    void pass(Milliseconds time) {
        constexpr Milliseconds longest(500);
        auto const end = FakeClock::now() + time;
        turn();
        for (Milliseconds step(1); FakeClock::now() < end && !hasEnded_;) {
            FakeClock::move(std::min(step, end - FakeClock::now()));
            step = turn() ? Milliseconds(1) : std::min(2 * step, longest);
        }
    }

    void end() {
        if (!hasEnded_) { daemon_.quit(); }
        pass(Milliseconds(70'000));
        expect(hasEnded_, "a daemon ends when it is told to");
    }

    EventLoop loop_;
    bool hasEnded_ = false;
    std::array<std::unique_ptr<Client>, mostClients> clients_;
    std::size_t current_ = 0;
    daemon::Daemon daemon_;
};

void run(std::string const& input) {
    FakeClock const clock;
    Story().tell(input);
}

/// A client's request: what is no answer to anything.
std::string asRequest(std::string const& text) {
    static std::regex const correlation("\"correlation_\":\"[0-9a-f-]*\"");
    static std::regex const result("\"result_\":\"[a-zA-Z]*\"");
    static std::string const nil = "\"correlation_\":\"00000000-0000-0000-0000-000000000000\"";
    return std::regex_replace(std::regex_replace(text, correlation, nil), result, "\"result_\":\"none\"");
}

Target::Texts seeds() {
    Target::Texts texts;
    std::string all;
    for (auto const& name : goldenNames()) {
        auto const text = asRequest(golden(name));
        texts.push_back(text + "\n@+1500\n");
        all += text + "\n@+200\n";
    }
    texts.push_back(all);
    texts.push_back(golden("ObserveMsg") + "\n@1\n" + asRequest(golden("PingMsg")) + "\n@-\n@+100\n@2\n@.\n@+100\n");
    texts.push_back("@!\n" + golden("PingMsg") + "\n@+11000\n");
    return texts;
}

std::string mutate(std::string text, std::size_t most, std::mt19937& random) {
    if (random() % 4 == 0) {
        static Target::Texts const directions{"@0", "@1", "@2", "@-", "@.", "@!", "@+1", "@+100", "@+5000", "@+60000"};
        auto const at = text.find('\n', random() % (text.size() + 1));
        if (at != std::string::npos) { text.insert(at, '\n' + directions[random() % directions.size()]); }
    }
    text = mutateWireLine(std::move(text), most, random);
    return random() % 4 == 0 ? text : asRequest(text);
}

Registration const registration({"daemon", &run, &seeds, &wireWords, &mutate});

} // namespace

} // namespace zorv::fuzz
