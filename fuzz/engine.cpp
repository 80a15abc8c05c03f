// SPDX-License-Identifier: Apache-2.0
// Between the fuzzer and the one target that is linked to the program.

#include "fuzz/Target.h"
#include "fuzz/silenceLog.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>

using zorv::fuzz::Target;
using zorv::fuzz::targets;

// NOLINTBEGIN(readability-identifier-naming): the fuzzer's names
extern "C" {

std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    zorv::fuzz::silenceLog();
    return 0;
}

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    targets().front().run(std::string(reinterpret_cast<char const*>(data), size));
    return 0;
}

std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned int seed) {
    std::mt19937 random(seed);
    auto const& target = targets().front();
    // What keeps the form finds what lies behind it; the rest finds what is wrong with the form.
    if (target.mutate == nullptr || random() % 4 == 0) { return LLVMFuzzerMutate(data, size, most); }
    auto const input = target.mutate(std::string(reinterpret_cast<char const*>(data), size), most, random);
    auto const count = std::min(input.size(), most);
    std::memcpy(data, input.data(), count);
    return count;
}

} // extern "C"
// NOLINTEND(readability-identifier-naming)
