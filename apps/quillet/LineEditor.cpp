// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/LineEditor.h"

#include "apps/quillet/Terminal.h"
#include "apps/quillet/displayWidth.h"
#include "apps/quillet/words.h"

#include <histedit.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cwchar>
#include <utility>

namespace zorv {

namespace {

constexpr int historySize = 1000;          // lines
constexpr char endOfTransmission = '\x04'; // Ctrl-D

std::string commonStart(std::vector<std::string> const& words) {
    auto start = words.front();
    for (auto const& word : words) {
        auto const differ = std::mismatch(start.begin(), start.end(), word.begin(), word.end());
        start.erase(differ.first, start.end());
    }
    return start;
}

} // namespace

/// The library's objects, and what it calls back.
class LineEditor::Library {
public:
    Library(std::string prompt, std::string historyFile, WaitForKey waitForKey, Complete complete)
        : prompt_(std::move(prompt)),
          historyFile_(std::move(historyFile)),
          waitForKey_(std::move(waitForKey)),
          complete_(std::move(complete)),
          editor_(::el_init("quillet", stdin, stdout, stderr)),
          history_(::history_init()) {
        HistEvent event;
        ::history(history_, &event, H_SETSIZE, historySize);
        ::history(history_, &event, H_SETUNIQUE, 1);
        ::history(history_, &event, H_LOAD, historyFile_.c_str());
        ::el_set(editor_, EL_CLIENTDATA, this);
        ::el_set(editor_, EL_PROMPT, &promptOf);
        ::el_set(editor_, EL_EDITOR, "emacs");
        ::el_set(editor_, EL_HIST, &::history, history_);
        ::el_set(editor_, EL_GETCFN, &nextCharacter);
        ::el_set(editor_, EL_ADDFN, "complete", "Complete the word", &completeWord);
        ::el_set(editor_, EL_BIND, "^I", "complete", nullptr);
        ::el_set(editor_, EL_BIND, "^R", "em-inc-search-prev", nullptr);
    }

    ~Library() {
        ::el_end(editor_);
        ::history_end(history_);
    }

    Library(Library const&) = delete;
    Library& operator=(Library const&) = delete;

    Input read() {
        int count = 0;
        isInterrupted_ = false;
        isReading_ = true;
        auto const* const text = ::el_gets(editor_, &count);
        isReading_ = false;
        if (isInterrupted_) {
            ::el_reset(editor_);
            return {End::interrupted, ""};
        }
        if (text == nullptr || count <= 0) { return {End::endOfInput, ""}; }
        std::string line(text);
        line.erase(line.find_last_not_of("\r\n") + 1);
        if (line.find_first_not_of(" \t") != std::string::npos) { remember(line); }
        return {End::line, line};
    }

    void resized() { ::el_resize(editor_); }

    void showAbove(std::string const& lines) {
        if (!isReading_) {
            std::fputs(lines.c_str(), stdout);
            std::fflush(stdout);
            return;
        }
        auto const* const line = ::el_line(editor_);
        auto const typed = displayWidth(prompt_ + std::string(line->buffer, line->cursor));
        auto const columns = Terminal(STDOUT_FILENO).columns();
        if (columns > 0 && typed >= columns) { std::fprintf(stdout, "\x1b[%zuA", typed / columns); }
        std::fputs(escape::clearBelow, stdout);
        std::fputs(lines.c_str(), stdout);
        std::fflush(stdout);
        ::el_set(editor_, EL_REFRESH);
    }

private:
    static Library& of(EditLine* editor) {
        void* self = nullptr;
        ::el_get(editor, EL_CLIENTDATA, &self);
        return *static_cast<Library*>(self);
    }

    static char* promptOf(EditLine* editor) { return of(editor).prompt_.data(); }

    /// One character of the terminal, which sends UTF-8.
    static int nextCharacter(EditLine* editor, wchar_t* character) {
        auto& self = of(editor);
        std::mbstate_t state{};
        while (true) {
            if (!self.waitForKey_()) {
                self.isInterrupted_ = true;
                errno = EINTR;
                return -1;
            }
            char byte = 0;
            auto const count = ::read(STDIN_FILENO, &byte, 1);
            if (count <= 0) { return static_cast<int>(count); }
            // What the terminal makes of the end of input that was typed before the editor had it.
            if (byte == '\0') { byte = endOfTransmission; }
            auto const used = std::mbrtowc(character, &byte, 1, &state);
            if (used == static_cast<std::size_t>(-2)) { continue; }
            if (used == static_cast<std::size_t>(-1)) {
                state = {};
                continue;
            }
            return 1;
        }
    }

    static unsigned char completeWord(EditLine* editor, int) {
        auto& self = of(editor);
        auto const* const line = ::el_line(editor);
        auto const words = splitLine(std::string(line->buffer, line->cursor));
        auto const candidates = self.complete_(words);
        if (candidates.empty()) { return CC_REFRESH_BEEP; }
        auto const start = commonStart(candidates);
        auto addition = start.substr(words.back().size());
        // After a word that is complete another one follows, but an object goes on.
        bool const isWhole = candidates.size() == 1 && start.find('{') == std::string::npos;
        if (isWhole) { addition += ' '; }
        if (addition.empty() && candidates.size() > 1) {
            std::string list;
            for (auto const& each : candidates) { list += ending(each) + "  "; }
            list.back() = '\n';
            self.showAbove(list);
            return CC_NORM;
        }
        return ::el_insertstr(editor, addition.c_str()) == 0 ? CC_REFRESH : CC_REFRESH_BEEP;
    }

    /// Of an object only what could come next, otherwise the whole word.
    static std::string ending(std::string const& candidate) {
        bool const isObject = candidate.front() == '{';
        return isObject ? candidate.substr(candidate.rfind('"', candidate.rfind('"') - 1)) : candidate;
    }

    void remember(std::string const& line) {
        HistEvent event;
        ::history(history_, &event, H_ENTER, line.c_str());
        ::history(history_, &event, H_SAVE, historyFile_.c_str()); // what is typed later may never come to an end
    }

    std::string prompt_;
    std::string historyFile_;
    WaitForKey waitForKey_;
    Complete complete_;
    EditLine* editor_;
    History* history_;
    bool isReading_ = false;
    bool isInterrupted_ = false;
};

LineEditor::LineEditor(std::string const& prompt, std::string const& historyFile, WaitForKey waitForKey,
                       Complete complete)
    : library_(std::make_unique<Library>(prompt, historyFile, std::move(waitForKey), std::move(complete))) {}

LineEditor::~LineEditor() = default;

LineEditor::Input LineEditor::read() { return library_->read(); }

void LineEditor::resized() { library_->resized(); }

void LineEditor::showAbove(std::string const& lines) { library_->showAbove(lines); }

} // namespace zorv
