// SPDX-License-Identifier: Apache-2.0
#include "fuzz/Target.h"

#include <cstdlib>
#include <iostream>
#include <utility>

namespace zorv::fuzz {

namespace {

std::vector<Target>& list() {
    static std::vector<Target> targets;
    return targets;
}

} // namespace

std::vector<Target> const& targets() { return list(); }

Registration::Registration(Target target) { list().push_back(std::move(target)); }

void expect(bool holds, std::string const& what) {
    if (holds) { return; }
    std::cerr << "does not hold: " << what << std::endl;
    std::abort();
}

} // namespace zorv::fuzz
