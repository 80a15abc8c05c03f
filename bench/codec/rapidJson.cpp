// SPDX-License-Identifier: Apache-2.0
// RapidJSON: a tree of values whose strings stand in the text itself and whose nodes come from one block of memory, and
// its Writer. The block and the text's copy, which the parser overwrites, are kept.

#include "bench/codec/decode.h"
#include "bench/codec/encode.h"
#include "bench/codec/peers.h"

#if defined(__SSE2__)
#define RAPIDJSON_SSE2
#endif
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstring>
#include <memory>

namespace bench {

namespace {

class Object;

class Value {
public:
    explicit Value(rapidjson::Value const& value) : value_(value) {}

    Object object() const;
    template <class Visit> void forEach(Visit visit) const {
        require(value_.IsArray());
        for (auto const& element : value_.GetArray()) { visit(Value(element)); }
    }
    std::string_view text() const {
        require(value_.IsString());
        return {value_.GetString(), value_.GetStringLength()};
    }
    std::uint64_t number() const {
        require(value_.IsUint64());
        return value_.GetUint64();
    }
    bool flag() const {
        require(value_.IsBool());
        return value_.GetBool();
    }

private:
    static void require(bool right) {
        if (!right) { throw std::runtime_error("another type"); }
    }

    rapidjson::Value const& value_;
};

class Object {
public:
    explicit Object(rapidjson::Value const& value) : value_(value) {}

    template <class Visit> void with(std::string_view key, Visit visit) const {
        auto const wanted = rapidjson::StringRef(key.data(), static_cast<rapidjson::SizeType>(key.size()));
        auto const member = value_.FindMember(rapidjson::Value(wanted));
        if (member != value_.MemberEnd()) { visit(Value(member->value)); }
    }

private:
    rapidjson::Value const& value_;
};

Object Value::object() const {
    require(value_.IsObject());
    return Object(value_);
}

/// What is kept from one text to the next.
struct Memory {
    std::vector<char> text;
    std::vector<char> nodes;
    std::vector<char> stack;

    void fit(std::size_t textSize) {
        if (text.size() > textSize) { return; }
        text.resize(textSize + 1);
        nodes.resize(4 * textSize + 65536); // a node is larger than most values are in the text
        stack.resize(4 * textSize + 65536);
    }
};

template <unsigned int flags> Decoder decoder(std::string const& name) {
    return makeDecoder(name, [memory = std::make_shared<Memory>()](std::string const& text, auto& target) {
        using Pool = rapidjson::MemoryPoolAllocator<>;
        memory->fit(text.size());
        std::memcpy(memory->text.data(), text.c_str(), text.size() + 1);
        Pool nodes(memory->nodes.data(), memory->nodes.size());
        Pool stack(memory->stack.data(), memory->stack.size());
        rapidjson::GenericDocument<rapidjson::UTF8<>, Pool, Pool> document(&nodes, memory->stack.size() / 2, &stack);
        document.ParseInsitu<flags>(memory->text.data());
        if (document.HasParseError()) { throw std::runtime_error("malformed"); }
        read(Value(document), target);
    });
}

template <class Writer> class Out {
public:
    explicit Out(rapidjson::StringBuffer& buffer) : writer_(buffer) {}

    void open() { writer_.StartObject(); }
    void close() { writer_.EndObject(); }
    void openArray() { writer_.StartArray(); }
    void closeArray() { writer_.EndArray(); }
    void key(std::string_view key) { writer_.Key(key.data(), static_cast<rapidjson::SizeType>(key.size())); }
    void text(std::string_view text) {
        if (!writer_.String(text.data(), static_cast<rapidjson::SizeType>(text.size()))) {
            throw std::runtime_error("not UTF-8");
        }
    }
    void number(int number) { writer_.Int(number); }
    void number(unsigned int number) { writer_.Uint(number); }
    void flag(bool flag) { writer_.Bool(flag); }

private:
    Writer writer_;
};

template <unsigned int flags> Encoder encoder(std::string const& name) {
    auto const encode = [](auto const& object, Encoder::Use const& use) {
        using Writer = rapidjson::Writer<rapidjson::StringBuffer, rapidjson::UTF8<>, rapidjson::UTF8<>,
                                         rapidjson::CrtAllocator, flags>;
        rapidjson::StringBuffer buffer;
        Out<Writer> out(buffer);
        write(out, object);
        use({buffer.GetString(), buffer.GetSize()});
    };
    return {name, encode, encode, encode};
}

} // namespace

std::vector<Decoder> rapidJsonDecoders() {
    return {decoder<rapidjson::kParseDefaultFlags>("RapidJSON in-situ"),
            decoder<rapidjson::kParseDefaultFlags | rapidjson::kParseValidateEncodingFlag>("RapidJSON in-situ, UTF-8")};
}

std::vector<Encoder> rapidJsonEncoders() {
    return {encoder<rapidjson::kWriteNoFlags>("RapidJSON Writer"),
            encoder<rapidjson::kWriteValidateEncodingFlag>("RapidJSON Writer, UTF-8")};
}

} // namespace bench
