// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <exception>
#include <stdexcept>
#include <string>

namespace zorv {

/// Calls `work` in a process of its own and returns the text that it returns there.
///
/// Errors: std::runtime_error where the process ends in any other way, with what `work` threw.
template <class Work> std::string inChildProcess(Work const& work) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) { throw std::runtime_error("no pipe"); }
    auto const child = ::fork();
    if (child < 0) { throw std::runtime_error("no process"); }
    if (child == 0) {
        ::close(ends[0]);
        int status = 0;
        std::string text;
        try {
            text = work();
        } catch (std::exception const& error) {
            text = error.what();
            status = 1;
        }
        std::size_t sent = 0;
        while (sent < text.size()) {
            auto const count = ::write(ends[1], text.data() + sent, text.size() - sent);
            if (count <= 0) { ::_exit(2); }
            sent += static_cast<std::size_t>(count);
        }
        ::_exit(status); // leaves the parent's exit handlers and buffers alone
    }
    ::close(ends[1]);
    std::string text;
    std::array<char, 4096> block{};
    for (;;) {
        auto const count = ::read(ends[0], block.data(), block.size());
        if (count <= 0) { break; }
        text.append(block.data(), static_cast<std::size_t>(count));
    }
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) { throw std::runtime_error("child process failed: " + text); }
    return text;
}

} // namespace zorv
