// SPDX-License-Identifier: Apache-2.0
// Decoding and encoding of three messages by this project and by other JSON libraries, from text to typed objects and
// back, with all checks on.
//
// Benchmarks are named direction/sample/library. A decoding counts `allocations`, and of them those that the decoded
// object still `keeps`. Before anything is measured, every library has to give back, from the objects that it decoded,
// the very text that they were decoded from.

#include "bench/codec/allocations.h"
#include "bench/codec/peers.h"

#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/readSerializable.h"

#include <benchmark/benchmark.h>

#include <boost/make_shared.hpp>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <stdexcept>
#include <utility>

namespace {

using bench::Decoder;
using bench::Encoder;
using benchmark::State;

constexpr char const* own = "quillet";

/// Has each encoder show the text of what each decoder made of `text`.
template <class Object, class Decode, class Encode>
void requireSameText(std::string const& text, std::vector<Decoder> const& decoders,
                     std::vector<Encoder> const& encoders, Decode Decoder::*decode, Encode Encoder::*encode) {
    for (auto const& decoder : decoders) {
        Object const object = (decoder.*decode)(text);
        for (auto const& encoder : encoders) {
            (encoder.*encode)(object, [&](std::string_view shown) {
                if (shown != text) {
                    throw std::runtime_error(decoder.name + " and " + encoder.name + " make another text of " + text +
                                             ": " + std::string(shown));
                }
            });
        }
    }
}

std::string withPadding(std::string text) {
    text.reserve(text.size() + Decoder::padding);
    return text;
}

void verify(std::vector<Decoder> const& decoders, std::vector<Encoder> const& encoders) {
    using namespace bench;
    auto const padded = [](zorv::TMessage const& message) { return withPadding(wireText(message)); };
    auto const node = [&](zorv::NodeInformationMsg const& message) {
        // One node each: the order of several is the containers' affair.
        requireSameText<NodeTable>(padded(message), decoders, encoders, &Decoder::nodes, &Encoder::nodes);
    };
    node(makeVariedNode(true));
    node(makeVariedNode(false));
    node(makeNodeTable(1));
    requireSameText<Ping>(padded(makePing()), decoders, encoders, &Decoder::ping, &Encoder::ping);
    requireSameText<NvmBackup>(padded(makeNvmBackup(2)), decoders, encoders, &Decoder::nvm, &Encoder::nvm);
}

/// Measures what `decode` makes of the text; what it throws is the benchmark's error.
template <class Decode> void measureDecoding(State& state, std::string const& text, Decode const& decode) try {
    decode(text); // what a library keeps from one text to the next is there from now on
    for ([[maybe_unused]] auto _ : state) { benchmark::DoNotOptimize(decode(text)); }
    auto const before = bench::allocations();
    auto const object = decode(text);
    auto const after = bench::allocations();
    auto const taken = after.taken - before.taken;
    state.counters["allocations"] = static_cast<double>(taken);
    state.counters["keeps"] = static_cast<double>(taken - (after.returned - before.returned));
    state.counters["bytes"] = static_cast<double>(text.size());
} catch (std::exception const& error) { state.SkipWithError(error.what()); }

template <class Encode> void measureEncoding(State& state, std::size_t bytes, Encode const& encode) try {
    encode();
    for ([[maybe_unused]] auto _ : state) { encode(); }
    auto const before = bench::allocations();
    encode();
    state.counters["allocations"] = static_cast<double>(bench::allocations().taken - before.taken);
    state.counters["bytes"] = static_cast<double>(bytes);
} catch (std::exception const& error) { state.SkipWithError(error.what()); }

void measureCopying(State& state, std::string const& text) {
    std::vector<char> copy(text.size());
    for ([[maybe_unused]] auto _ : state) {
        std::memcpy(copy.data(), text.data(), text.size());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
    state.counters["bytes"] = static_cast<double>(text.size());
}

/// A message, the same for the other libraries, and its text.
template <class Message, class Object> struct Sample {
    template <class Make> explicit Sample(Make const& make)
        : message(make()), object(message), text(withPadding(bench::wireText(message))) {}

    Message message;
    Object object;
    std::string text;
};

class Suite {
public:
    Suite(std::vector<Decoder> decoders, std::vector<Encoder> encoders)
        : decoders_(std::move(decoders)), encoders_(std::move(encoders)) {}

    void addPing() const { add<zorv::PingMsg, bench::Ping>("ping", &bench::makePing, &Decoder::ping, &Encoder::ping); }

    void addNodes(std::size_t nodes) const {
        add<zorv::NodeInformationMsg, bench::NodeTable>(
            "nodes-" + std::to_string(nodes), [nodes] { return bench::makeNodeTable(nodes); }, &Decoder::nodes,
            &Encoder::nodes);
    }

    void addNvm(std::size_t kibibytes) const {
        add<zorv::ManageNvmMsg, bench::NvmBackup>(
            "nvm-" + std::to_string(kibibytes), [kibibytes] { return bench::makeNvmBackup(kibibytes / 4); },
            &Decoder::nvm, &Encoder::nvm);
    }

private:
    template <class Message, class Object, class Make, class Decode, class Encode>
    void add(std::string const& name, Make const& make, Decode Decoder::*decode, Encode Encoder::*encode) const {
        using TheSample = Sample<Message, Object>;
        // Made when it is first measured: the largest are large.
        auto const sample = [=, made = std::make_shared<std::unique_ptr<TheSample>>()]() -> TheSample const& {
            if (!*made) { *made = std::make_unique<TheSample>(make); }
            return **made;
        };
        addDecoding(name, own, [=](State& state) {
            measureDecoding(state, sample().text, [](std::string const& text) { return zorv::readSerializable(text); });
        });
        for (auto const& decoder : decoders_) {
            addDecoding(name, decoder.name, [=, function = decoder.*decode](State& state) {
                measureDecoding(state, sample().text, function);
            });
        }
        addDecoding(name, "memcpy", [=](State& state) { measureCopying(state, sample().text); });
        addEncoding(name, own, [=](State& state) {
            measureEncoding(state, sample().text.size(), [&message = sample().message] {
                zorv::Serializer s;
                message.serialInserter(s);
                benchmark::DoNotOptimize(s.str().data());
            });
        });
        for (auto const& encoder : encoders_) {
            addEncoding(name, encoder.name, [=, function = encoder.*encode](State& state) {
                measureEncoding(state, sample().text.size(), [&] {
                    function(sample().object, [](std::string_view text) { benchmark::DoNotOptimize(text.data()); });
                });
            });
        }
    }

    template <class Function>
    static void addDecoding(std::string const& sample, std::string const& library, Function const& function) {
        benchmark::RegisterBenchmark(("decode/" + sample + '/' + library).c_str(), function);
    }

    template <class Function>
    static void addEncoding(std::string const& sample, std::string const& library, Function const& function) {
        benchmark::RegisterBenchmark(("encode/" + sample + '/' + library).c_str(), function);
    }

    std::vector<Decoder> decoders_;
    std::vector<Encoder> encoders_;
};

std::vector<Decoder> makeDecoders() {
    auto decoders = bench::rapidJsonDecoders();
#ifdef BENCH_SIMDJSON
    decoders.push_back(bench::simdjsonDecoder());
#endif
#ifdef BENCH_SIMDJSON_AVX2
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi")) {
        decoders.push_back(bench::simdjsonAvx2Decoder());
    }
#endif
    decoders.push_back(bench::jsonCppDecoder());
    return decoders;
}

} // namespace

int main(int argc, char** argv) try {
    auto const decoders = makeDecoders();
    auto const encoders = bench::rapidJsonEncoders();
    verify(decoders, encoders);
    Suite const suite(decoders, encoders);
    suite.addPing();
    for (auto const nodes : {1U, 10U, 100U, 232U, 1000U, 4096U}) { suite.addNodes(nodes); }
    for (auto const kibibytes : {64U, 256U, 1024U, 8192U, 65'536U}) { suite.addNvm(kibibytes); }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) { return 2; }
    if (benchmark::RunSpecifiedBenchmarks() == 0) {
        std::fputs("no benchmark has such a name\n", stderr);
        return 1;
    }
    return 0;
} catch (std::exception const& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
