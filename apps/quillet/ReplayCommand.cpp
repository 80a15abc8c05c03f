// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Command.h"
#include "apps/quillet/Conversation.h"
#include "apps/quillet/MessageCommand.h"
#include "apps/quillet/Recording.h"
#include "apps/quillet/Session.h"
#include "apps/quillet/confirm.h"
#include "apps/quillet/makeRequest.h"
#include "apps/quillet/messageRows.h"

#include "platform/libtransport/toText.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace zorv {

namespace {

using Clock = std::chrono::steady_clock;
constexpr unsigned int longestMessage = 24; // of the catalogue, so that rows that come one by one stay in line
using std::chrono::milliseconds;

/// How an answer differs from the one that was recorded; empty where it does not.
std::string difference(Confirmable const& recorded, Confirmable const& now) {
    std::string text;
    auto const add = [&text](std::string const& name, std::string const& before, std::string const& after) {
        if (before == after) { return; }
        text += (text.empty() ? "" : "; ") + name + ": recorded " + before + ", now " + after;
    };
    add("result", toString(recorded.result()), toString(now.result()));
    auto const before = memberTexts(recorded);
    auto const after = memberTexts(now);
    if (recorded.name() != now.name()) { add("message", recorded.name(), now.name()); }
    for (std::size_t i = 0; i < std::min(before.size(), after.size()); ++i) {
        add(before[i].name, before[i].value, after[i].value);
    }
    return text;
}

/// Whether a command for such a message asks before it destroys something.
bool mayDestroy(TMessage const& message) {
    auto const destroys = [&message](MessageCommandDescription const& command) {
        bool const asksOrEnds = *command.destroys != '\0' || command.end == MessageEnd::untilDaemonEnds;
        return asksOrEnds && command.steps.back().message == message.name();
    };
    return std::any_of(commandTable().begin(), commandTable().end(), destroys) ||
           std::any_of(nvmCommandTable().begin(), nvmCommandTable().end(), destroys);
}

/// Sends the requests of a recording again, with their distances in time, and compares the answers.
class ReplayCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const command = app.add_subcommand("replay", "Send recorded requests again and compare the answers");
        command->add_option("FILE", file_, "What \"quillet observe --json\" has written")->required()->type_name("");
        command->add_option("--speed", speed_, "How much faster than recorded")
            ->type_name("N")
            ->capture_default_str()
            ->check(CLI::Range(0.001, 1e6).description(""));
        command->add_flag("--yes", isConfirmed_, "Do not ask before what cannot be undone");
        return command;
    }

    ExitCode run(DaemonAddress const& daemon, Output& output) override {
        auto const recording = read();
        for (auto const& each : recording) {
            if (!isConfirmed_ && mayDestroy(*each.request)) {
                confirm("line " + std::to_string(each.line) + " of the recording, " + each.request->name() +
                        ", may change what cannot be undone");
                break;
            }
        }
        Session session(daemon);
        if (!output.isJson()) { output.titles({"Line", "Message", "Result", "Difference"}, {4, longestMessage, 9}); }
        auto const start = Clock::now();
        for (auto const& each : recording) {
            auto const offset = static_cast<double>((each.time - recording.front().time).count()) / speed_;
            auto const rest = start + milliseconds(std::llround(offset)) - Clock::now();
            if (rest > Clock::duration::zero()) { session.pause(std::chrono::duration_cast<milliseconds>(rest)); }
            send(session, daemon, output, each);
        }
        isAllSent_ = true;
        if (waiting_ > 0) { session.serve(); }
        return code_;
    }

private:
    std::vector<RecordedRequest> read() const {
        std::ifstream file(file_);
        if (!file) { throw ExitError(ExitCode::usage, file_ + ": cannot be read"); }
        return readRecording(file);
    }

    void send(Session& session, DaemonAddress const& daemon, Output& output, RecordedRequest const& each) {
        auto const message = makeRequest(each.request->name(), toText(*each.request));
        auto const request = boost::dynamic_pointer_cast<Confirmable>(message);
        if (!request) { return session.tell(message); }
        ++waiting_;
        session.request(request, longestWork(daemon), [this, &session, &output, &each](Confirmable const& answer) {
            --waiting_;
            compare(output, each, answer);
            if (isAllSent_ && waiting_ == 0) { session.stop(); }
        });
    }

    void compare(Output& output, RecordedRequest const& each, Confirmable const& answer) {
        auto const differs = each.answer ? difference(*each.answer, answer) : std::string();
        if (each.answer && each.answer->result() != answer.result()) { code_ = ExitCode::refused; }
        if (!output.isJson()) {
            output.show({{std::to_string(each.line), each.request->name(), toString(answer.result()), differs}}, "");
            return;
        }
        output.show(answer);
        if (!differs.empty()) {
            std::cerr << "quillet: line " << each.line << ": " << each.request->name() << ": " << differs << std::endl;
        }
    }

    std::string file_;
    double speed_ = 1;
    bool isConfirmed_ = false;
    std::size_t waiting_ = 0; ///< requests that are not answered yet
    bool isAllSent_ = false;
    ExitCode code_ = ExitCode::ok;
};

} // namespace

std::unique_ptr<Command> makeReplayCommand() { return std::make_unique<ReplayCommand>(); }

} // namespace zorv
