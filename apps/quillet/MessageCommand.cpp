// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/MessageCommand.h"

#include "apps/commandLine.h"
#include "apps/quillet/Conversation.h"
#include "apps/quillet/EventView.h"
#include "apps/quillet/argumentJson.h"
#include "apps/quillet/confirm.h"
#include "apps/quillet/findMessage.h"
#include "apps/quillet/makeRequest.h"
#include "apps/quillet/words.h"

#include "platform/libtransport/tables/TypeDescriptor.h"
#include "platform/libtransport/toText.h"
#include "zwave/libquillet/SubscribeMsg.h"

#include <CLI/CLI.hpp>
#include <json/reader.h>
#include <json/value.h>
#include <json/writer.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <sstream>
#include <utility>

namespace zorv {

namespace {

using Kind = TypeDescriptor::Kind;

constexpr char const* timeoutMember = "timeout_"; // of all messages of long work
constexpr char const* eventsMember = "events_";   // of a subscription

Json::Value parse(std::string const& text) {
    Json::Value value;
    std::unique_ptr<Json::CharReader> const reader(Json::CharReaderBuilder().newCharReader());
    reader->parse(text.data(), text.data() + text.size(), &value, nullptr);
    return value;
}

std::string write(Json::Value const& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

/// Sends the requests of a description and shows their answers.
class MessageCommand final : public Command {
public:
    explicit MessageCommand(MessageCommandDescription description) : description_(std::move(description)) {}

    CLI::App* addTo(CLI::App& app) override {
        auto* const command = app.add_subcommand(description_.name, description_.help);
        for (auto const& argument : description_.arguments) { addTo(*command, argument); }
        // Checked when all words are there, so that a wrong one is wrong usage.
        command->callback([this] { membersOfWords(); });
        what_ = (app.get_parent() == nullptr ? "" : app.get_name() + ' ') + description_.name;
        if (*description_.destroys != '\0') { command->add_flag("--yes", isConfirmed_, "Do not ask"); }
        if (description_.events.isOnRequest) {
            command->add_flag("--follow", isFollowed_, "Go on with what changes, until Ctrl-C");
        }
        if (description_.end == MessageEnd::follow || description_.events.isOnRequest) {
            command->add_option("--count", count_, "End after so many events")
                ->type_name("N")
                ->check(wholeNumber(1UL, 1000000000UL));
        }
        return command;
    }

    ExitCode run(DaemonAddress const& daemon, Output& output) override {
        if (*description_.destroys != '\0' && !isConfirmed_) { confirm(description_.destroys); }
        Conversation conversation(daemon, output, what_);
        auto& session = conversation.session();
        auto const request = makeRequest(description_.steps.back().message, lastMembers(daemon));
        if (description_.events.form != EventForm::none && (isFollowed_ || !description_.events.isOnRequest)) {
            view_ = makeEventView(description_.events.form, *request, output);
            hear(conversation, output);
        }
        if (view_ && *description_.events.names != '\0') {
            auto const subscription = makeRequest(SubscribeMsg::NAME, description_.events.names);
            auto const result =
                conversation.judge(*conversation.ask(boost::dynamic_pointer_cast<Confirmable>(subscription)));
            if (result != ExitCode::ok) { return result; }
        }
        for (auto const& step : description_.steps) {
            bool const isLast = &step == &description_.steps.back();
            auto const message = isLast ? request : makeRequest(step.message, step.members);
            auto const confirmable = boost::dynamic_pointer_cast<Confirmable>(message);
            if (!confirmable) { return tell(session, message); }
            auto const answer = conversation.ask(confirmable, waitFor(daemon), interruption(step), limit(*message));
            auto const result = isLast ? end(conversation, *answer, output) : conversation.judge(*answer);
            if (result != ExitCode::ok) { return result; }
        }
        if (isEndless()) {
            std::cerr << "quillet: " << what_ << ": listening" << std::endl;
            if (count_ == 0 || heard_ < count_) { session.serve(); }
        }
        return ExitCode::ok;
    }

    std::vector<std::string> completions(TypedWord const& typed) const override {
        for (auto const& argument : description_.arguments) {
            if (typed.argument != argument.name) { continue; }
            auto words = valueWords(findMember(message(), argument.member)->type, typed);
            // Events are named by their classes.
            if (words.empty() && description_.end == MessageEnd::follow) { words = messageWords(); }
            return words;
        }
        return {};
    }

private:
    TypeDescriptor const& message() const { return findMessage(description_.steps.back().message); }

    /// A list may take all the words that are left; before other words, and as an option, it is one with commas.
    void addTo(CLI::App& command, MessageArgument const& argument) {
        auto const* const member = findMember(message(), argument.member);
        auto const help = member->doc + argumentHelp(member->type);
        auto& words = words_[argument.member];
        bool const isOption = *argument.name == '-';
        bool const isLast = argument.member == lastWord();
        bool const takesMany = isLast && (member->type.kind == Kind::list || isCommand(member->type));
        auto* const option = takesMany
                                 ? command.add_option(argument.name, words, help)
                                 : command.add_option_function<std::string>(
                                       argument.name, [&words](std::string const& word) { words = {word}; }, help);
        option->type_name(isOption ? "TEXT" : "")->required(!argument.isOptional && !isOption);
    }

    /// The member of the last argument that is no option.
    std::string lastWord() const {
        std::string last;
        for (auto const& argument : description_.arguments) {
            if (*argument.name != '-') { last = argument.member; }
        }
        return last;
    }

    static bool isCommand(TypeDescriptor const& type) {
        return type.kind == Kind::reference && type.name == "zorv::GenericCommand";
    }

    Json::Value membersOfWords() const {
        auto members = parse(description_.steps.back().members);
        for (auto const& argument : description_.arguments) {
            auto const& words = words_.at(argument.member);
            if (words.empty()) { continue; }
            if (argument.member == std::string(eventsMember)) { checkEvents(argument, words); }
            try {
                members[argument.member] = argumentJson(findMember(message(), argument.member)->type, words);
            } catch (std::invalid_argument const& error) { throw CLI::ValidationError(argument.name, error.what()); }
        }
        return members;
    }

    /// Events are named by their classes; which of them are events, the daemon knows.
    static void checkEvents(MessageArgument const& argument, std::vector<std::string> const& words) {
        auto known = messageWords();
        known.emplace_back("*");
        for (auto const& word : words) {
            std::istringstream parts(word);
            for (std::string part; std::getline(parts, part, ',');) {
                if (std::find(known.begin(), known.end(), part) != known.end()) { continue; }
                throw CLI::ValidationError(argument.name, "unknown event \"" + part + '"' + suggest(part, known));
            }
        }
    }

    /// The time that the user gives is the daemon's.
    std::string lastMembers(DaemonAddress const& daemon) const {
        auto members = membersOfWords();
        if (description_.work.timeUnit != 0 && daemon.isTimeoutGiven) {
            auto const time = std::max<std::int64_t>(daemon.timeout.count() / description_.work.timeUnit, 1);
            members[timeoutMember] = static_cast<Json::Int64>(time);
        }
        return write(members);
    }

    std::optional<std::chrono::milliseconds> waitFor(DaemonAddress const& daemon) const {
        if (!description_.work.isLong) { return {}; }
        // The daemon's answer that the time is over is waited for as well.
        auto const answerTime = description_.work.timeUnit != 0 ? std::chrono::seconds(10) : std::chrono::seconds(0);
        return longestWork(daemon) + answerTime;
    }

    /// When a mode ends by itself; other work ends when it is done.
    std::optional<std::chrono::milliseconds> limit(TMessage const& request) const {
        if (*description_.work.abort == '\0' || description_.work.timeUnit == 0) { return {}; }
        auto const timeout = parse(toText(request))[timeoutMember];
        if (!timeout.isIntegral() || timeout.asInt64() <= 0) { return {}; }
        return std::chrono::milliseconds(timeout.asInt64() * description_.work.timeUnit);
    }

    Interruption interruption(MessageStep const& step) const {
        Interruption interruption;
        interruption.text = description_.work.interrupted;
        interruption.ended = "the mode has ended";
        if (*description_.work.abort != '\0') {
            interruption.request =
                boost::dynamic_pointer_cast<Confirmable>(makeRequest(step.message, description_.work.abort));
        }
        return interruption;
    }

    ExitCode tell(Session& session, boost::shared_ptr<TMessage> const& message) {
        if (description_.end != MessageEnd::untilDaemonEnds) {
            session.tellLast(message);
        } else if (!session.tellAndWaitForEnd(message)) {
            throw ExitError(ExitCode::timedOut, "the daemon has not ended");
        }
        return ExitCode::ok;
    }

    /// The command goes on after its answer.
    bool isEndless() const { return description_.end == MessageEnd::follow || isFollowed_; }

    void hear(Conversation& conversation, Output& output) {
        conversation.session().hear([this, &conversation, &output](TMessage const& message) {
            if (count_ != 0 && heard_ == count_) { return; }
            bool isShown = false;
            // The last stage of an interview comes as the answer, too.
            auto const* const confirmable = dynamic_cast<Confirmable const*>(&message);
            bool const isOver = confirmable != nullptr && confirmable->result() != ZResult::inProgress;
            if (!isEndless() && isOver) { return; }
            conversation.beside([&] { isShown = view_->show(message, output); });
            if (isShown && ++heard_ == count_) { conversation.session().stop(); }
        });
    }

    ExitCode end(Conversation& conversation, Confirmable const& answer, Output& output) const {
        if (description_.end == MessageEnd::follow) { return conversation.judge(answer); }
        if (!view_ || isFollowed_ || !Conversation::isGood(answer)) { return conversation.show(answer); }
        view_->show(answer, output);
        return conversation.judge(answer);
    }

    MessageCommandDescription description_;
    std::string what_; ///< the words that call it
    std::map<std::string, std::vector<std::string>> words_;
    std::unique_ptr<EventView> view_;
    bool isConfirmed_ = false;
    bool isFollowed_ = false;
    unsigned long count_ = 0; ///< of messages that are shown; 0 for all
    unsigned long heard_ = 0;
};

std::vector<std::unique_ptr<Command>> makeAll(std::vector<MessageCommandDescription> const& all) {
    std::vector<std::unique_ptr<Command>> commands;
    commands.reserve(all.size());
    for (auto const& each : all) { commands.push_back(std::make_unique<MessageCommand>(each)); }
    return commands;
}

} // namespace

std::vector<std::unique_ptr<Command>> makeMessageCommands() { return makeAll(commandTable()); }

std::vector<std::unique_ptr<Command>> makeNvmMessageCommands() { return makeAll(nvmCommandTable()); }

} // namespace zorv
