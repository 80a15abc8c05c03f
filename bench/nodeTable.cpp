// SPDX-License-Identifier: Apache-2.0
// Writing, reading and showing a node table of the largest network that Z-Wave allows: 232 nodes of 40 command classes.
// The range is the number of nodes, so that anything that grows faster than the table stands out.

#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/readSerializable.h"
#include "zwave/libquillet/NodeInformationMsg.h"

#include <benchmark/benchmark.h>

#include <boost/make_shared.hpp>

namespace {

using namespace zorv;

NodeInformationMsg nodeTable(std::int64_t nodes) {
    DeviceMap devices;
    for (std::int64_t node = 1; node <= nodes; ++node) {
        ZwaveAddress const address(0xC0FFEE01, static_cast<unsigned char>(node));
        auto const device = boost::make_shared<Device>(address, DeviceInfo());
        for (int type = 0x60; type < 0x60 + 40; ++type) {
            device->commandClass(static_cast<CommandClassType::Enum>(type), {2, CommandClassAttribs::supported});
        }
        devices.emplace(address, device);
    }
    return {GetNodesOp::set, DisplayOption::cmdClassDetail, devices};
}

std::string write(Serializable const& object) {
    Serializer s;
    object.serialInserter(s);
    return s.str();
}

void writeNodeTable(benchmark::State& state) {
    auto const message = nodeTable(state.range());
    std::size_t bytes = 0;
    for ([[maybe_unused]] auto _ : state) { bytes = write(message).size(); }
    state.counters["bytes"] = static_cast<double>(bytes);
    state.SetComplexityN(state.range());
}
BENCHMARK(writeNodeTable)->Arg(58)->Arg(116)->Arg(232)->Unit(benchmark::kMillisecond)->Complexity();

void readNodeTable(benchmark::State& state) {
    auto const text = write(nodeTable(state.range()));
    for ([[maybe_unused]] auto _ : state) { benchmark::DoNotOptimize(readSerializable(text)); }
    state.SetComplexityN(state.range());
}
BENCHMARK(readNodeTable)->Arg(58)->Arg(116)->Arg(232)->Unit(benchmark::kMillisecond)->Complexity();

void showNodeTable(benchmark::State& state) {
    auto const message = nodeTable(state.range());
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
