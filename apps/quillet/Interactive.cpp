// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Interactive.h"

#include "apps/quillet/EventFeed.h"
#include "apps/quillet/EventView.h"
#include "apps/quillet/LineEditor.h"
#include "apps/quillet/confirm.h"
#include "apps/quillet/words.h"

#include "platform/libio/EventLoop.h"
#include "platform/libio/InputWatch.h"
#include "platform/libzorvlogger/printable.h"
#include "zwave/libquillet/ControlCommandMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/SocketStatusMsg.h"

#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <system_error>
#include <utility>

namespace zorv {

namespace {

/// Where the history outlives the session; empty where there is no home.
std::string historyFile() {
    auto const* const state = std::getenv("XDG_STATE_HOME");
    auto const* const home = std::getenv("HOME");
    std::filesystem::path folder;
    if (state != nullptr && *state == '/') {
        folder = state;
    } else if (home != nullptr) {
        folder = std::filesystem::path(home) / ".local" / "state";
    } else {
        return {};
    }
    folder /= "quillet";
    std::error_code error; // without the folder, the history lasts as long as the session
    std::filesystem::create_directories(folder, error);
    return folder / "history";
}

/// The frames of the link, the clients that come and go and each change of a node would bury what is typed; `trace`,
/// `watch` and `nodes --follow` show them.
bool isOfInterest(TMessage const& event) {
    return event.name() != ControlCommandMsg::NAME && event.name() != SocketStatusMsg::NAME &&
           event.name() != NodeInformationMsg::NAME;
}

/// Ends the process as the signal does by default.
void endBy(int signal) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

class Interactive {
public:
    explicit Interactive(ClientOptions options)
        : options_(std::move(options)),
          signals_(loop_, {SIGINT, SIGWINCH, SIGTERM, SIGHUP},
                   [this](int signal) {
                       if (signal == SIGWINCH) { return editor_.resized(); }
                       if (signal != SIGINT) { return terminate(signal); }
                       if (isRunning_) { return; } // it is the command that is interrupted
                       isInterrupted_ = true;
                       loop_.stop();
                   }),
          editor_(
              "quillet> ", historyFile(), [this] { return waitForKey(); },
              [this](std::vector<std::string> const& words) { return complete(words); }),
          feed_(loop_, options_.daemon(),
                {[this](TMessage const& event) { hear(event); },
                 [this](std::string const& text) { say("quillet: " + printable(text) + '\n'); }}) {
        options_.loop = &loop_;
    }

    /// The signal that ended run(); 0 for none.
    int terminatedBy() const noexcept { return terminatedBy_; }

    ExitCode run() {
        std::cout << "quillet " QUILLET_VERSION " at " << toString(options_.place)
                  << "; \"help\" lists the commands, \"exit\" leaves" << std::endl;
        feed_.waitForStart(isInterrupted_);
        isInterrupted_ = false;
        while (terminatedBy_ == 0) {
            showWaiting();
            auto const input = editor_.read();
            if (input.end == LineEditor::End::endOfInput) {
                std::cout << std::endl;
                return ExitCode::ok;
            }
            if (terminatedBy_ != 0) { break; }
            if (input.end == LineEditor::End::interrupted) {
                std::cout << "^C" << std::endl;
                continue;
            }
            auto words = splitLine(input.line);
            if (words.back().empty()) { words.pop_back(); }
            if (words.empty()) { continue; }
            if (words == std::vector<std::string>{"exit"}) { return ExitCode::ok; }
            execute(std::move(words));
        }
        return ExitCode::interrupted;
    }

private:
    void execute(std::vector<std::string> words) {
        auto options = options_; // each line has its own
        CommandLine line(options);
        isRunning_ = true;
        try {
            // It is a word by which people mean to leave.
            if (words.front() == "quit") { confirm("quit ends the daemon, and exit leaves the client"); }
            line.run(std::move(words));
        } catch (ExitError const& error) { std::cerr << "quillet: " << error.what() << std::endl; }
        // The interruption that ended the command has come to this loop as well, and is not for the next line.
        Timer const end(loop_, std::chrono::milliseconds(1), [this] { loop_.stop(); });
        loop_.run();
        isRunning_ = false;
    }

    /// Serves the loop until there is a key, or the line is interrupted.
    bool waitForKey() {
        pollfd key{STDIN_FILENO, POLLIN, 0};
        isTyping_ = true;
        while (!isInterrupted_ && ::poll(&key, 1, 0) <= 0) {
            InputWatch const next(loop_, STDIN_FILENO, [this] { loop_.stop(); });
            loop_.run();
        }
        isTyping_ = false;
        return !std::exchange(isInterrupted_, false);
    }

    /// A command has the terminal as it was before; the prompt gives it back first.
    void terminate(int signal) {
        if (isRunning_) { endBy(signal); }
        terminatedBy_ = signal;
        isInterrupted_ = true;
        loop_.stop();
    }

    std::vector<std::string> complete(std::vector<std::string> const& words) {
        auto options = options_;
        auto all = CommandLine(options).completions(words, feed_.nodes());
        std::string const own = "exit";
        if (words.size() == 1 && own.compare(0, words.front().size(), words.front()) == 0) { all.push_back(own); }
        return all;
    }

    void hear(TMessage const& event) {
        if (!isOfInterest(event)) { return; }
        std::ostringstream text;
        Output output(text, Terminal(STDOUT_FILENO), {OutputFormat::table, false});
        makeEventView(EventForm::members, event, output)->show(event, output);
        say(text.str());
    }

    /// Above the line that is being typed. While a command runs, it has the terminal for itself.
    void say(std::string const& text) {
        if (isTyping_) { return editor_.showAbove(text); }
        constexpr std::size_t mostWaiting = 100;
        if (waiting_.size() < mostWaiting) { return waiting_.push_back(text); }
        ++leftOut_;
    }

    void showWaiting() {
        for (auto const& text : std::exchange(waiting_, {})) { std::cout << text; }
        if (leftOut_ > 0) { std::cout << "quillet: and " << std::exchange(leftOut_, 0) << " more\n"; }
        std::cout << std::flush;
    }

    ClientOptions options_;
    EventLoop loop_;
    SignalWatch signals_;
    bool isTyping_ = false;
    bool isRunning_ = false; ///< a command
    bool isInterrupted_ = false;
    int terminatedBy_ = 0;             ///< a signal
    std::vector<std::string> waiting_; ///< said while a command ran
    std::size_t leftOut_ = 0;
    LineEditor editor_;
    EventFeed feed_;
};

} // namespace

ExitCode runInteractively(ClientOptions const& options) {
    // The line editor counts characters by the locale; a name may hold any.
    if (std::setlocale(LC_CTYPE, "") == nullptr || MB_CUR_MAX == 1) { std::setlocale(LC_CTYPE, "C.UTF-8"); }
    int terminatedBy = 0;
    try {
        Interactive interactive(options);
        auto const code = interactive.run();
        terminatedBy = interactive.terminatedBy();
        if (terminatedBy == 0) { return code; }
    } catch (ExitError const& error) {
        std::cerr << "quillet: " << error.what() << std::endl;
        return error.code();
    }
    endBy(terminatedBy); // with the terminal as it was
    return ExitCode::interrupted;
}

} // namespace zorv
