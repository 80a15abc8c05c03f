// SPDX-License-Identifier: Apache-2.0
// Time to write and to read a message and an enumeration.

#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/readSerializable.h"
#include "zwave/libquillet/PingMsg.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

using zorv::PingMsg;
using zorv::Serializer;

boost::shared_ptr<PingMsg> makeAnswer() {
    namespace ZResult = zorv::ZResult;
    return PingMsg::create(PingMsg::create(zorv::ZwaveAddress(0xC0FFEE01, 5)), ZResult::success, 250);
}

void writePing(benchmark::State& state) {
    auto const ping = makeAnswer();
    std::size_t bytes = 0;
    for (auto _ : state) {
        Serializer s;
        ping->serialInserter(s);
        bytes += s.str().size();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}
BENCHMARK(writePing);

void readPing(benchmark::State& state) {
    Serializer s;
    makeAnswer()->serialInserter(s);
    for (auto _ : state) { benchmark::DoNotOptimize(zorv::readSerializable(s.str())); }
    state.SetBytesProcessed(static_cast<std::int64_t>(s.str().size()) * state.iterations());
}
BENCHMARK(readPing);

void answerPing(benchmark::State& state) {
    auto const request = PingMsg::create(zorv::ZwaveAddress(0xC0FFEE01, 5));
    for (auto _ : state) { benchmark::DoNotOptimize(PingMsg::create(request, zorv::ZResult::success, 250)); }
}
BENCHMARK(answerPing);

void writeEnum(benchmark::State& state) {
    for (auto _ : state) { benchmark::DoNotOptimize(toString(zorv::ZResult::fileReadFailure)); }
}
BENCHMARK(writeEnum);

void readEnum(benchmark::State& state) {
    std::string const text = "fileReadFailure";
    for (auto _ : state) { benchmark::DoNotOptimize(zorv::ZResult::toEnum(text)); }
}
BENCHMARK(readEnum);

} // namespace

BENCHMARK_MAIN();
