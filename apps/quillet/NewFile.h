// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace zorv {

/// A file that appears at once and as a whole: it is written under another name beside its place, brought to the disk and
/// renamed. What is not written leaves nothing behind. All errors are ExitErrors.
class NewFile {
public:
    /// An ExitError also where the file is there already, unless it may be replaced.
    NewFile(std::string const& path, bool mayReplace);
    ~NewFile();

    NewFile(NewFile const&) = delete;
    NewFile& operator=(NewFile const&) = delete;

    void write(std::string const& text);

private:
    void put(std::string const& text) const;
    [[noreturn]] void fail() const;

    std::string path_;
    std::string temporary_;
    bool mayReplace_;
    int descriptor_ = -1;
};

} // namespace zorv
