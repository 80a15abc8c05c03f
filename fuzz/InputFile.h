// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace zorv::fuzz {

/// An input as a file that is in memory only.
class InputFile {
public:
    explicit InputFile(std::string const& text);
    ~InputFile();

    InputFile(InputFile const&) = delete;
    InputFile& operator=(InputFile const&) = delete;

    std::string const& path() const noexcept { return path_; }

private:
    int descriptor_;
    std::string path_;
};

} // namespace zorv::fuzz
