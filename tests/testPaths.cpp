// SPDX-License-Identifier: Apache-2.0
#include "tests/testPaths.h"

namespace zorv {

std::string sourcePath(std::string const& name) { return QUILLET_SOURCE_DIR "/" + name; }

std::string programPath(std::string const& name) { return QUILLET_BIN_DIR "/" + name; }

std::string libraryPath() { return QUILLET_LIBRARY; }

} // namespace zorv
