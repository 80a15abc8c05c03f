// SPDX-License-Identifier: Apache-2.0
// What is done with messages besides writing and reading their text: answering, showing, and enumeration texts.

#include "bench/codec/objects.h"

#include <benchmark/benchmark.h>

#include <boost/make_shared.hpp>

namespace {

using namespace zorv;

void answerPing(benchmark::State& state) {
    auto const request = PingMsg::create(ZwaveAddress(0xC0FFEE01, 5));
    for ([[maybe_unused]] auto _ : state) { benchmark::DoNotOptimize(PingMsg::create(request, ZResult::success, 250)); }
}
BENCHMARK(answerPing);

void writeEnum(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) { benchmark::DoNotOptimize(toString(ZResult::fileReadFailure)); }
}
BENCHMARK(writeEnum);

void readEnum(benchmark::State& state) {
    std::string const text = "fileReadFailure";
    for ([[maybe_unused]] auto _ : state) { benchmark::DoNotOptimize(ZResult::toEnum(text)); }
}
BENCHMARK(readEnum);

/// The range is the number of nodes, so that anything that grows faster than the table stands out.
void showNodeTable(benchmark::State& state) {
    auto const message = bench::makeNodeTable(static_cast<std::size_t>(state.range()));
    for ([[maybe_unused]] auto _ : state) {
        StringVecVec rows;
        message.accumulateDisplay(rows);
        benchmark::DoNotOptimize(rows.data());
    }
    state.SetComplexityN(state.range());
}
BENCHMARK(showNodeTable)->Arg(58)->Arg(116)->Arg(232)->Unit(benchmark::kMillisecond)->Complexity();

} // namespace

BENCHMARK_MAIN();
