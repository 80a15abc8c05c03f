// SPDX-License-Identifier: Apache-2.0
// simdjson On-Demand: values are found while the text is walked along, by a parser that is kept. Compiled once for the
// architecture's common instructions and, where there are any, once more for AVX2: this library chooses the larger part
// of its code when it is compiled. It checks the text's UTF-8, but no more of its grammar than it walks through: unlike
// the others it does not see what comes after the message's last member.

#include "bench/codec/decode.h"
#include "bench/codec/peers.h"

#include <simdjson.h>

#include <memory>

namespace bench {

namespace {

namespace ondemand = simdjson::ondemand;

class Object;

class Value {
public:
    explicit Value(ondemand::value value) : value_(value) {}

    Object object();
    template <class Visit> void forEach(Visit visit) {
        for (auto element : value_.get_array()) { visit(Value(element.value())); }
    }
    std::string_view text() { return value_.get_string(); }
    std::uint64_t number() { return value_.get_uint64(); }
    bool flag() { return value_.get_bool(); }

private:
    ondemand::value value_;
};

class Object {
public:
    explicit Object(ondemand::object object) : object_(object) {}

    template <class Visit> void with(std::string_view key, Visit visit) {
        ondemand::value member;
        auto const error = object_.find_field_unordered(key).get(member);
        if (error == simdjson::NO_SUCH_FIELD) { return; }
        if (error != simdjson::SUCCESS) { throw simdjson::simdjson_error(error); }
        visit(Value(member));
    }

private:
    ondemand::object object_;
};

Object Value::object() { return Object(value_.get_object()); }

} // namespace

#ifdef BENCH_SIMDJSON_AVX2_ONLY
Decoder simdjsonAvx2Decoder() {
    constexpr char const* name = "simdjson On-Demand, AVX2";
#else
Decoder simdjsonDecoder() {
    constexpr char const* name = "simdjson On-Demand";
#endif
    auto const parser = std::make_shared<ondemand::parser>();
    return makeDecoder(name, [parser](std::string const& text, auto& target) {
        ondemand::document document = parser->iterate(text.data(), text.size(), text.size() + Decoder::padding);
        read(Value(document.get_value()), target);
    });
}

} // namespace bench
