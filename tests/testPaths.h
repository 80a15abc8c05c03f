// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// Where the tests find what they read and run. Only testPaths.cpp knows these places, so that every other test compiles
// to the same object in any checkout and a compiler cache can share it.

namespace zorv {

/// A file of the source tree, such as "docs/daemon.md".
std::string sourcePath(std::string const& name);

/// A built program, such as "zwaved".
std::string programPath(std::string const& name);

/// The built catalogue, libquillet.so.
std::string libraryPath();

} // namespace zorv
