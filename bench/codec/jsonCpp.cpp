// SPDX-License-Identifier: Apache-2.0
// JsonCpp: a tree of values, made by one parser that is kept.

#include "bench/codec/decode.h"
#include "bench/codec/peers.h"

#include <json/reader.h>
#include <json/value.h>

#include <memory>

namespace bench {

namespace {

class Object;

class Value {
public:
    explicit Value(Json::Value const& value) : value_(value) {}

    Object object() const;
    template <class Visit> void forEach(Visit visit) const {
        require(value_.isArray());
        for (auto const& element : value_) { visit(Value(element)); }
    }
    std::string_view text() const {
        char const* begin = nullptr;
        char const* end = nullptr;
        require(value_.getString(&begin, &end));
        return {begin, static_cast<std::size_t>(end - begin)};
    }
    std::uint64_t number() const {
        require(value_.isUInt64());
        return value_.asUInt64();
    }
    bool flag() const {
        require(value_.isBool());
        return value_.asBool();
    }

private:
    static void require(bool right) {
        if (!right) { throw std::runtime_error("another type"); }
    }

    Json::Value const& value_;
};

class Object {
public:
    explicit Object(Json::Value const& value) : value_(value) {}

    template <class Visit> void with(std::string_view key, Visit visit) const {
        auto const* const member = value_.find(key.data(), key.data() + key.size());
        if (member != nullptr) { visit(Value(*member)); }
    }

private:
    Json::Value const& value_;
};

Object Value::object() const {
    require(value_.isObject());
    return Object(value_);
}

} // namespace

Decoder jsonCppDecoder() {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    std::shared_ptr<Json::CharReader> const reader(builder.newCharReader());
    return makeDecoder("JsonCpp", [reader](std::string const& text, auto& target) {
        Json::Value root;
        if (!reader->parse(text.data(), text.data() + text.size(), &root, nullptr)) {
            throw std::runtime_error("malformed");
        }
        read(Value(root), target);
    });
}

} // namespace bench
