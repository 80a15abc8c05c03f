// SPDX-License-Identifier: Apache-2.0
// Attacks the daemon in every way that its limits are made for, while one well-behaved client goes on with its work.

#include "tests/scenario/LineClient.h"
#include "tests/scenario/Process.h"
#include "tests/testPaths.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <exception>
#include <functional>
#include <iomanip>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace scenario;
using Clock = std::chrono::steady_clock;

constexpr int peers = 32;
constexpr std::size_t mebibyte = std::size_t{1} << 20U;
constexpr std::size_t longestLine = 8 * mebibyte; // the daemon's own default
constexpr std::size_t keptConnections = 500;      // of one that only connects, in all

struct Options {
    double seconds = 5;
    long longestWait = 250;
    long mostMemory = 64;
    std::string only;
};

/// What one hostile peer does, over and over again, with a new connection each time the daemon has closed the last one.
struct Attack {
    std::string name;
    std::function<void(unsigned short port, std::function<bool()> const& goOn)> run;
    std::string limits = ":"; ///< shell command before the daemon starts
};

std::string message(std::string const& name, std::string const& header, std::string const& members) {
    return R"({"__name__":"zorv::)" + name +
           R"(","__bases__":[{"__name__":"zorv::Confirmable","__bases__":[{"__name__":"zorv::TConfirmable","__bases__":[)"
           R"({"__name__":"zorv::TMessage","__bases__":[],"id_":"11111111-2222-4333-8444-555555555555")" +
           header + "}]}]}]" + members + "}\n";
}

std::string repeated(std::string const& text, std::size_t size) {
    std::string all;
    all.reserve(size + text.size());
    while (all.size() < size) { all += text; }
    return all;
}

/// Sends the same bytes again and again and reads nothing.
Attack flood(std::string const& name, std::string const& bytes, int receiveBuffer = 4096) {
    auto const shared = std::make_shared<std::string const>(bytes);
    return {name, [shared, receiveBuffer](unsigned short port, std::function<bool()> const& goOn) {
                OpenClient client(port, receiveBuffer);
                while (goOn() && client.send(*shared)) {}
            }};
}

void connectAndWait(unsigned short port, std::function<bool()> const& goOn) {
    std::vector<std::unique_ptr<LineClient>> connections;
    while (goOn()) {
        if (connections.size() == keptConnections / peers) { connections.clear(); }
        connections.push_back(std::make_unique<LineClient>(port));
    }
}

void readSlowly(unsigned short port, std::function<bool()> const& goOn) {
    OpenClient client(port, 4096);
    auto const pings = repeated(pingLine(1) + "\n", 100000);
    while (goOn() && client.send(pings)) {
        for (int i = 0; i < 20; ++i) { client.receiveLine(); }
    }
}

void openHalf(unsigned short port, std::function<bool()> const& goOn) {
    LineClient client(port);
    client.send(pingLine(1).substr(0, 100));
    client.endOutput();
    while (goOn()) { client.receiveLine(); }
}

std::vector<Attack> attacks() {
    std::vector<Attack> all;
    all.push_back(flood("unfinished lines", std::string(longestLine / 8, 'x')));
    all.push_back(flood("short of the limit", std::string(longestLine / peers, 'x')));
    all.push_back(flood("[[[[", std::string(longestLine, '[') + '\n'));
    all.push_back(flood("nested objects", repeated("{\"a\":", longestLine) + '\n'));
    all.push_back(flood("many numbers", '[' + repeated("0,", longestLine) + "0]\n"));
    all.push_back(flood("many arrays", '[' + repeated("[],", longestLine) + "[]]\n"));
    all.push_back(flood("many keys", "{" + repeated("\"\":0,", longestLine) + "\"\":0}\n"));
    all.push_back(
        flood("large requests", message("SubscribeMsg", "", ",\"events_\":[\"" + std::string(mebibyte, 'x') + "\"]")));
    all.push_back(
        flood("many events", message("SubscribeMsg", "", ",\"events_\":[" + repeated("\"\",", mebibyte) + "\"\"]")));
    all.push_back(flood("requests, unread", repeated(pingLine(1) + "\n", 100000)));
    all.push_back(flood("requests that wait", repeated(pingLine(9) + "\n", 100000)));
    all.push_back(
        flood("correlations",
              repeated(message("PingMsg", ",\"correlation_\":\"11111111-2222-4333-8444-555555555555\"", ""), 100000)));
    all.push_back(flood("versions", repeated(versionLine() + "\n", 100000)));
    all.push_back(flood("newlines", std::string(100000, '\n')));
    all.push_back(flood("rubbish", repeated("{\"__name__\":\"zorv::PingMsg\",\"result_\":7}\n", 100000)));
    all.push_back({"a web page", [](unsigned short port, std::function<bool()> const& goOn) {
                       LineClient client(port);
                       client.send("POST / HTTP/1.1\r\nHost: localhost\r\n\r\n" + versionLine() + "\n" + pingLine(1) +
                                   "\n");
                       client.receiveLine();
                       while (goOn() && client.send(std::string(1000, 'x') + '\n')) {}
                   }});
    all.push_back({"slow readers", readSlowly});
    all.push_back({"half a line, half closed", openHalf});
    all.push_back({"many connections", connectAndWait});
    all.push_back({"few descriptors", connectAndWait, "ulimit -n 64"});
    return all;
}

struct Outcome {
    long peakKiB = 0;
    std::chrono::microseconds worstWait{};
    long answers = 0;
    std::string failure; ///< of the well-behaved client or of the daemon
};

/// Sends requests and waits for each answer, as long as `goOn` says so.
void behaveWell(OpenClient& client, std::function<bool()> const& goOn, Outcome& outcome) {
    auto const ping = pingLine(1);
    for (int more = 10; goOn() || more-- > 0;) {
        auto const start = Clock::now();
        if (!client.sendLine(ping)) { throw std::runtime_error("the connection ended"); }
        if (client.receive()->name() != "PingMsg") { throw std::runtime_error("not the answer"); }
        auto const wait = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
        outcome.worstWait = std::max(outcome.worstWait, wait);
        ++outcome.answers;
    }
}

Outcome run(Attack const& attack, Options const& options) {
    Outcome outcome;
    Process daemon({"/bin/sh", "-c", attack.limits + "; exec \"$0\" --port 0", zorv::programPath("zwaved")});
    auto const port = announcedPort(daemon);
    OpenClient good(port);
    auto const atRest = daemon.memory("VmRSS");
    auto const end =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(options.seconds));
    auto const goOn = [end] { return Clock::now() < end; };
    std::vector<std::thread> threads;
    for (int i = 0; i < peers; ++i) {
        threads.emplace_back([&] {
            while (goOn()) {
                try {
                    attack.run(port, goOn);
                } catch (std::exception const&) {} // was disconnected, or not even connected
            }
        });
    }
    try {
        behaveWell(good, goOn, outcome);
    } catch (std::exception const& error) { outcome.failure = error.what(); }
    for (auto& thread : threads) { thread.join(); }
    outcome.peakKiB = daemon.memory("VmHWM") - atRest;
    daemon.signal(SIGTERM);
    if (daemon.wait() != 0) { outcome.failure = "the daemon did not end in order"; }
    return outcome;
}

/// Shows the outcome, and whether it is good.
bool judge(std::string const& name, Outcome const& outcome, Options const& options) {
    auto const waitMs = static_cast<double>(outcome.worstWait.count()) / 1000;
    auto const peakMiB = static_cast<double>(outcome.peakKiB) / 1024;
    bool const waited = waitMs > static_cast<double>(options.longestWait);
    bool const grew = options.mostMemory > 0 && peakMiB > static_cast<double>(options.mostMemory);
    bool const good = outcome.failure.empty() && !waited && !grew;
    std::cout << std::left << std::setw(26) << name << std::right << std::fixed << std::setprecision(1) << std::setw(8)
              << peakMiB << " MiB" << std::setw(10) << waitMs << " ms" << std::setw(9) << outcome.answers << "  "
              << (outcome.failure.empty() ? "all came" : outcome.failure) << (good ? "" : "  FAILED") << std::endl;
    return good;
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    Options options;
    CLI::App app("Attacks the daemon with 32 peers at a time, while one well-behaved client goes on with its work");
    app.add_option("--seconds", options.seconds, "How long each attack lasts")->capture_default_str();
    app.add_option("--longest-wait", options.longestWait, "Longest that the well-behaved client may wait, ms")
        ->capture_default_str();
    app.add_option("--most-memory", options.mostMemory, "Most that the daemon may grow by, MiB; 0 is not to look")
        ->capture_default_str();
    app.add_option("--only", options.only, "The one attack to run");
    CLI11_PARSE(app, argc, argv);
    std::cout << "attack                      over rest   worst wait  answers" << std::endl;
    bool good = true;
    bool any = false;
    for (auto const& attack : attacks()) {
        if (!options.only.empty() && options.only != attack.name) { continue; }
        any = true;
        good = judge(attack.name, run(attack, options), options) && good;
    }
    if (!any) { std::cerr << "hostile: there is no attack of that name\n"; }
    return good && any ? 0 : 1;
}
