// SPDX-License-Identifier: Apache-2.0
#include "apps/commandLine.h"
#include "apps/quillet/Command.h"
#include "apps/quillet/Seconds.h"
#include "apps/quillet/Session.h"
#include "apps/quillet/parseNode.h"

#include "zwave/libquillet/PingMsg.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <string>

namespace zorv {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Pings one node, once or several times. A series continues after a failed ping.
class PingCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const command = app.add_subcommand("ping", "Ping a node of the Z-Wave network");
        command->add_option("NODE", node_, "Node id, 1 to 232, or a full address such as c0ffee01:5")
            ->required()
            ->type_name("")
            ->check(CLI::Validator(
                [](std::string const& text) {
                    try {
                        parseNode(text);
                    } catch (std::invalid_argument const& error) { return std::string(error.what()); }
                    return std::string();
                },
                ""));
        command->add_option("--count", count_, "Number of pings")
            ->type_name("N")
            ->capture_default_str()
            ->check(wholeNumber(1, maxCount));
        command->add_option("--interval", interval_, "Seconds from one ping to the next")
            ->type_name("S")
            ->capture_default_str()
            ->check(isSeconds(0));
        return command;
    }

    ExitCode run(DaemonAddress const& daemon, Output& output) override {
        Session session(daemon);
        auto const interval = toMilliseconds(interval_);
        auto code = ExitCode::ok;
        auto next = Clock::now();
        for (int count = 1; count <= count_; ++count) {
            auto const time = TimeStamp::now();
            auto const answer = session.ask(PingMsg::create(parseNode(node_)));
            show(output, *answer, count, time);
            if (answer->result() == ZResult::timeout) {
                if (code == ExitCode::ok) { code = ExitCode::timedOut; }
            } else if (answer->result() != ZResult::success) {
                code = ExitCode::refused;
            }
            next += interval;
            auto const rest = std::chrono::duration_cast<milliseconds>(next - Clock::now());
            if (count < count_ && rest.count() > 0) { session.pause(rest); }
        }
        return code;
    }

private:
    static constexpr int maxCount = 1000000000;

    static void show(Output& output, Confirmable& answer, int count, TimeStamp const& time) {
        auto* const ping = dynamic_cast<PingMsg*>(&answer);
        if (ping == nullptr) { output.showRejection(answer); }
        ping->header(count == 1);
        ping->count(count);
        ping->time(time);
        output.show(*ping);
    }

    std::string node_;
    int count_ = 1;
    double interval_ = 1;
};

} // namespace

std::unique_ptr<Command> makePingCommand() { return std::make_unique<PingCommand>(); }

} // namespace zorv
