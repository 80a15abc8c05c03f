// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zorv {

/// Reads lines from the terminal, with editing, history and completion.
class LineEditor {
public:
    /// What keys are waited for with; false where the user has interrupted the line.
    using WaitForKey = std::function<bool()>;
    /// What the text before the cursor can become: the last word of it, each time another one.
    using Complete = std::function<std::vector<std::string>(std::vector<std::string> const& words)>;

    enum class End { line, interrupted, endOfInput };

    struct Input {
        End end = End::line;
        std::string line;
    };

    LineEditor(std::string const& prompt, std::string const& historyFile, WaitForKey waitForKey, Complete complete);
    ~LineEditor();

    LineEditor(LineEditor const&) = delete;
    LineEditor& operator=(LineEditor const&) = delete;

    Input read();

    /// To be told that the terminal has another size now.
    void resized();

    /// Shows lines above the one that is being typed, which stays as it is.
    void showAbove(std::string const& lines);

private:
    class Library;

    std::unique_ptr<Library> library_;
};

} // namespace zorv
