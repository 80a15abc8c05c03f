// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <random>
#include <string>
#include <vector>

namespace zorv::fuzz {

/// One thing that is fed with whatever there may be.
///
/// A target lives in a source of its own, `targets/NAME.cpp`, and comes into the list by a Registration there. It must
/// depend on nothing but the input, so that what is found is found again.
struct Target {
    using Texts = std::vector<std::string>;

    std::string name;

    /// Works on an input, and calls expect() for what has to hold.
    void (*run)(std::string const& input);

    /// Inputs to begin with, made from what the tests have.
    Texts (*seeds)();

    /// Words that inputs consist of, for the dictionary; may be null.
    Texts (*words)() = nullptr;

    /// Changes an input in a way that keeps its form, to at most so many bytes; may be null.
    std::string (*mutate)(std::string input, std::size_t most, std::mt19937& random) = nullptr;
};

/// Every target that is linked to the program.
std::vector<Target> const& targets();

struct Registration {
    explicit Registration(Target target);
};

/// Ends the process, with the text, where a thing does not hold that has to.
void expect(bool holds, std::string const& what);

} // namespace zorv::fuzz
