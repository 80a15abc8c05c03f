// SPDX-License-Identifier: Apache-2.0
// Holds the reader against the tree reader on as many damaged texts as one likes. A damage is determined by the seed, so
// that what is found can be found again.

#include "tests/support/damagedTexts.h"
#include "tests/unit/oracle/disagreement.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdint>
#include <cstdio>

namespace {

using Clock = std::chrono::steady_clock;

struct Run {
    std::uint64_t inputs = 20'000;
    unsigned int seed = 1;
};

/// The number of inputs on which the readers agreed before the first on which they do not.
std::uint64_t compare(Run const& run) {
    auto const texts = zorv::goldenTexts();
    zorv::Damage damage(texts, run.seed);
    auto const start = Clock::now();
    for (std::uint64_t input = 0; input < run.inputs; ++input) {
        auto const found = zorv::disagreement(damage.mutant(), static_cast<unsigned int>(input));
        if (!found.empty()) {
            std::printf("input %ju of seed %u:\n%s\n", static_cast<std::uintmax_t>(input), run.seed, found.c_str());
            return input;
        }
        if ((input + 1) % 1'000'000 == 0) {
            std::printf("%ju inputs, %.0f s\n", static_cast<std::uintmax_t>(input + 1),
                        std::chrono::duration<double>(Clock::now() - start).count());
            std::fflush(stdout);
        }
    }
    return run.inputs;
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Compares the reader with the tree reader on damaged texts.");
    Run run;
    app.add_option("--inputs", run.inputs, "How many texts")->capture_default_str();
    app.add_option("--seed", run.seed, "Which series of them")->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    auto const agreed = compare(run);
    if (agreed != run.inputs) { return 1; }
    std::printf("%ju inputs of seed %u: the readers agree\n", static_cast<std::uintmax_t>(agreed), run.seed);
    return 0;
}
