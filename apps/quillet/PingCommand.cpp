// SPDX-License-Identifier: Apache-2.0
#include "apps/commandLine.h"
#include "apps/quillet/Command.h"
#include "apps/quillet/Seconds.h"
#include "apps/quillet/Session.h"
#include "apps/quillet/parseNode.h"

#include "zwave/libquillet/PingMsg.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string>

namespace zorv {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// What became of the pings of a series.
class PingSummary {
public:
    void add(PingMsg const& ping) {
        ++sent_;
        if (ping.result() != ZResult::success) { return; }
        ++answered_;
        auto const latency = ping.latencyMs();
        shortest_ = std::min(shortest_, latency);
        longest_ = std::max(longest_, latency);
        sum_ += latency;
    }

    bool isEmpty() const noexcept { return sent_ == 0; }

    std::string text() const {
        std::ostringstream text;
        text << sent_ << " sent, " << answered_ << " answered, " << sent_ - answered_ << " lost";
        if (answered_ > 0) {
            auto const average = (sum_ + answered_ / 2) / answered_;
            text << "; min/avg/max " << shortest_ << '/' << average << '/' << longest_ << " ms";
        }
        return text.str();
    }

private:
    std::uint64_t sent_ = 0;
    std::uint64_t answered_ = 0;
    unsigned int shortest_ = std::numeric_limits<unsigned int>::max(); // milliseconds, as those below
    unsigned int longest_ = 0;
    std::uint64_t sum_ = 0;
};

/// Pings one node, again and again. A series continues after a failed ping.
class PingCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const command = app.add_subcommand("ping", "Ping a node of the Z-Wave network");
        command->add_option("NODE", node_, nodeHelp)->required()->type_name("")->check(isNode());
        command->add_option("--count", count_, "Number of pings (default: until Ctrl-C)")
            ->type_name("N")
            ->check(wholeNumber(1UL, 1000000000UL));
        command->add_option("--interval", interval_, "Seconds from one ping to the next")
            ->type_name("S")
            ->capture_default_str()
            ->check(isSeconds(0));
        return command;
    }

    ExitCode run(DaemonAddress const& daemon, Output& output) override {
        Session session(daemon);
        PingSummary summary;
        try {
            auto const code = series(session, output, summary);
            show(output, summary);
            return code;
        } catch (ExitError const& error) {
            bool const canShow = error.code() == ExitCode::interrupted || error.code() == ExitCode::noConnection;
            if (canShow) { show(output, summary); }
            throw;
        }
    }

    std::vector<std::string> completions(TypedWord const& typed) const override {
        return typed.argument == "NODE" ? typed.nodes : std::vector<std::string>();
    }

private:
    ExitCode series(Session& session, Output& output, PingSummary& summary) const {
        auto const interval = toMilliseconds(interval_);
        auto code = ExitCode::ok;
        auto next = Clock::now();
        for (int count = 1;; count += count < std::numeric_limits<int>::max() ? 1 : 0) {
            auto const time = TimeStamp::now();
            auto const answer = session.ask(PingMsg::create(parseNode(node_)));
            auto* const ping = dynamic_cast<PingMsg*>(answer.get());
            if (ping == nullptr) { output.showRejection(*answer); }
            summary.add(*ping);
            show(output, *ping, count, time);
            if (answer->result() == ZResult::timeout) {
                if (code == ExitCode::ok) { code = ExitCode::timedOut; }
            } else if (answer->result() != ZResult::success) {
                code = ExitCode::refused;
            }
            if (count_ != 0 && static_cast<unsigned long>(count) == count_) { return code; }
            next += interval;
            auto const rest = std::chrono::duration_cast<milliseconds>(next - Clock::now());
            if (rest.count() > 0) { session.pause(rest); }
        }
    }

    static void show(Output& output, PingMsg& ping, int count, TimeStamp const& time) {
        ping.header(count == 1 && output.hasTitles());
        ping.count(count);
        ping.time(time);
        output.show(ping);
    }

    /// With JSON, whoever reads the answers counts them.
    static void show(Output& output, PingSummary const& summary) {
        if (!output.isJson() && !summary.isEmpty()) { output.showLine(summary.text()); }
    }

    std::string node_;
    unsigned long count_ = 0; ///< 0 for no end
    double interval_ = 1;
};

} // namespace

std::unique_ptr<Command> makePingCommand() { return std::make_unique<PingCommand>(); }

} // namespace zorv
