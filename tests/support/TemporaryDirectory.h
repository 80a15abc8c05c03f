// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>

#include <fstream>
#include <string>

namespace zorv {

/// A directory that is gone, with all that is in it, when the test is over.
class TemporaryDirectory {
public:
    TemporaryDirectory()
        : path_(boost::filesystem::temp_directory_path() /
                boost::filesystem::unique_path("quillet-test-%%%%-%%%%-%%%%")) {
        boost::filesystem::create_directory(path_);
    }
    ~TemporaryDirectory() {
        boost::system::error_code ignored;
        boost::filesystem::remove_all(path_, ignored);
    }
    TemporaryDirectory(TemporaryDirectory const&) = delete;
    TemporaryDirectory& operator=(TemporaryDirectory const&) = delete;

    std::string path() const { return path_.string(); }
    std::string path(std::string const& name) const { return (path_ / name).string(); }

    /// Writes a file and returns its path.
    std::string write(std::string const& name, std::string const& text) const {
        auto const file = path(name);
        std::ofstream(file, std::ios::binary) << text;
        return file;
    }

private:
    boost::filesystem::path path_;
};

} // namespace zorv
