// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/Bytes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

// The parameters of a function, each named once:
//
//     struct SendData::Request {
//         NodeId node = 0;
//         Bytes data;
//         Byte options = 0;
//         Byte callbackId = 0;
//
//         static constexpr auto fields() {
//             return layout(node("node", &Request::node), counted("data", &Request::data), ...);
//         }
//     };
//
// Both ends of the line, the decoded rows and the reference are folds over such a layout: what a host encodes, a simulated
// module decodes. Numbers stand on the line with their most significant byte first.

namespace zorv::serialapi {

using NodeId = std::uint16_t;

/// How many bytes a node id takes, as host and module agreed.
enum class NodeIdWidth { one = 1, two = 2 };

/// One decoded parameter, for whoever shows it.
struct FieldValue {
    enum class Kind { number, bytes, numbers, text };

    std::string name;
    Kind kind = Kind::number;
    std::int64_t number = 0;
    Bytes bytes;
    std::vector<NodeId> numbers = {};
    std::string text = {};
};
using FieldValues = std::vector<FieldValue>;

/// A set of bits of which bit n of byte i stands for the number 8 * i + n + 1: nodes, or functions.
struct BitMask {
    Bytes bytes;

    bool contains(unsigned int number) const noexcept {
        auto const bit = number - 1;
        return number > 0 && bit / 8 < bytes.size() &&
               (static_cast<unsigned int>(bytes[bit / 8]) >> (bit % 8) & 1U) != 0;
    }
    void insert(unsigned int number) {
        auto const bit = number - 1;
        if (bit / 8 >= bytes.size()) { bytes.resize(bit / 8 + 1); }
        bytes[bit / 8] = static_cast<Byte>(bytes[bit / 8] | (1U << (bit % 8)));
    }
    std::vector<NodeId> numbers() const {
        std::vector<NodeId> numbers;
        for (unsigned int number = 1; number <= bytes.size() * 8; ++number) {
            if (contains(number)) { numbers.push_back(static_cast<NodeId>(number)); }
        }
        return numbers;
    }
};

class ParameterReader {
public:
    ParameterReader(Bytes const& bytes, NodeIdWidth width) : bytes_(bytes), width_(width) {}

    NodeIdWidth width() const noexcept { return width_; }
    std::size_t left() const noexcept { return bytes_.size() - position_; }

    bool take(std::size_t count, Bytes& to) {
        if (left() < count) { return false; }
        auto const begin = bytes_.begin() + static_cast<std::ptrdiff_t>(position_);
        to.assign(begin, begin + static_cast<std::ptrdiff_t>(count));
        position_ += count;
        return true;
    }
    bool take(std::size_t count, std::uint32_t& to) {
        if (left() < count) { return false; }
        to = 0;
        for (std::size_t i = 0; i < count; ++i) { to = to << 8U | bytes_[position_++]; }
        return true;
    }
    bool take(Byte& to) {
        if (left() == 0) { return false; }
        to = bytes_[position_++];
        return true;
    }

private:
    Bytes const& bytes_;
    NodeIdWidth width_;
    std::size_t position_ = 0;
};

class ParameterWriter {
public:
    explicit ParameterWriter(NodeIdWidth width) : width_(width) {}

    NodeIdWidth width() const noexcept { return width_; }

    void put(Byte byte) { bytes_.push_back(byte); }
    void put(Bytes const& bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }
    void put(std::size_t count, std::uint32_t number) {
        while (count-- > 0) { put(static_cast<Byte>(number >> (8 * count))); }
    }

    Bytes take() { return std::move(bytes_); }

private:
    NodeIdWidth width_;
    Bytes bytes_;
};

template <class Form> bool readFields(ParameterReader& in, Form& form);
template <class Form> void writeFields(ParameterWriter& out, Form const& form);
template <class Form> void showFields(FieldValues& values, Form const& form);

// ---- how one parameter stands on the line

namespace codecs {

/// An integer in `width` bytes.
template <std::size_t width> struct Number {
    static constexpr std::size_t bytes = width;

    template <class T> static bool read(ParameterReader& in, T& value) {
        std::uint32_t number = 0;
        if (!in.take(width, number)) { return false; }
        value = static_cast<T>(number);
        return true;
    }
    template <class T> static void write(ParameterWriter& out, T value) {
        out.put(width, static_cast<std::uint32_t>(value));
    }
    template <class T> static void show(FieldValues& values, char const* name, T value) {
        values.push_back({name, FieldValue::Kind::number, static_cast<std::int64_t>(value), {}});
    }
};

/// There where the frame is long enough.
template <class Codec> struct Optional {
    template <class T> static bool read(ParameterReader& in, std::optional<T>& value) {
        value.reset();
        if (in.left() < Codec::bytes) { return true; }
        value = T{};
        return Codec::read(in, *value);
    }
    template <class T> static void write(ParameterWriter& out, std::optional<T> const& value) {
        if (value) { Codec::write(out, *value); }
    }
    template <class T> static void show(FieldValues& values, char const* name, std::optional<T> const& value) {
        if (value) { Codec::show(values, name, *value); }
    }
};

struct Node {
    static bool read(ParameterReader& in, NodeId& value) {
        std::uint32_t number = 0;
        if (!in.take(static_cast<std::size_t>(in.width()), number)) { return false; }
        value = static_cast<NodeId>(number);
        return true;
    }
    static void write(ParameterWriter& out, NodeId value) { out.put(static_cast<std::size_t>(out.width()), value); }
    static void show(FieldValues& values, char const* name, NodeId value) {
        values.push_back({name, FieldValue::Kind::number, value, {}});
    }
};

/// Bytes after a byte that counts them; the bits of `mask` in it, where it says more than that.
struct Counted {
    static bool read(ParameterReader& in, Bytes& value) {
        Byte count = 0;
        return in.take(count) && in.take(count, value);
    }
    static void write(ParameterWriter& out, Bytes const& value) {
        out.put(static_cast<Byte>(value.size()));
        out.put(value);
    }
    static void show(FieldValues& values, char const* name, Bytes const& value) {
        values.push_back({name, FieldValue::Kind::bytes, 0, value});
    }
};

/// All bytes that are left.
struct Rest : Counted {
    static bool read(ParameterReader& in, Bytes& value) { return in.take(in.left(), value); }
    static void write(ParameterWriter& out, Bytes const& value) { out.put(value); }
};

template <std::size_t count> struct Array {
    static constexpr std::size_t bytes = count;

    static bool read(ParameterReader& in, std::array<Byte, count>& value) {
        for (auto& byte : value) {
            if (!in.take(byte)) { return false; }
        }
        return true;
    }
    static void write(ParameterWriter& out, std::array<Byte, count> const& value) {
        for (auto const byte : value) { out.put(byte); }
    }
    static void show(FieldValues& values, char const* name, std::array<Byte, count> const& value) {
        values.push_back({name, FieldValue::Kind::bytes, 0, Bytes(value.begin(), value.end())});
    }
};

/// Characters, filled up with zeros.
template <std::size_t count> struct Text {
    static bool read(ParameterReader& in, std::string& value) {
        Bytes bytes;
        if (!in.take(count, bytes)) { return false; }
        value.assign(bytes.begin(), bytes.end());
        value.erase(value.find_last_not_of('\0') + 1);
        return true;
    }
    static void write(ParameterWriter& out, std::string const& value) {
        for (std::size_t i = 0; i < count; ++i) { out.put(i < value.size() ? static_cast<Byte>(value[i]) : Byte{0}); }
    }
    static void show(FieldValues& values, char const* name, std::string const& value) {
        values.push_back({name, FieldValue::Kind::text, 0, {}, {}, value});
    }
};

/// A bit mask that stands as `Codec` says.
template <class Codec> struct Mask {
    static bool read(ParameterReader& in, BitMask& value) { return Codec::read(in, value.bytes); }
    static void write(ParameterWriter& out, BitMask const& value) { Codec::write(out, value.bytes); }
    static void show(FieldValues& values, char const* name, BitMask const& value) {
        values.push_back({name, FieldValue::Kind::numbers, 0, {}, value.numbers()});
    }
};

/// Node ids after a byte that counts them.
struct NodeList {
    static bool read(ParameterReader& in, std::vector<NodeId>& value) {
        Byte count = 0;
        if (!in.take(count)) { return false; }
        value.assign(count, 0);
        for (auto& node : value) {
            if (!Node::read(in, node)) { return false; }
        }
        return true;
    }
    static void write(ParameterWriter& out, std::vector<NodeId> const& value) {
        out.put(static_cast<Byte>(value.size()));
        for (auto const node : value) { Node::write(out, node); }
    }
    static void show(FieldValues& values, char const* name, std::vector<NodeId> const& value) {
        values.push_back({name, FieldValue::Kind::numbers, 0, {}, value});
    }
};

/// A record with a layout of its own; its members are shown as if they were the form's.
struct Record {
    template <class T> static bool read(ParameterReader& in, T& value) { return readFields(in, value); }
    template <class T> static void write(ParameterWriter& out, T const& value) { writeFields(out, value); }
    template <class T> static void show(FieldValues& values, char const*, T const& value) { showFields(values, value); }
};

/// A record of at least `size` bytes, there where the frame is long enough.
template <std::size_t size> struct SizedRecord : Record { static constexpr std::size_t bytes = size; };

/// A record after a byte that counts its bytes; none where that is 0.
struct CountedRecord {
    template <class T> static bool read(ParameterReader& in, std::optional<T>& value) {
        Bytes bytes;
        value.reset();
        if (!Counted::read(in, bytes)) { return false; }
        if (bytes.empty()) { return true; }
        ParameterReader inner(bytes, in.width());
        return readFields(inner, value.emplace()) && inner.left() == 0;
    }
    template <class T> static void write(ParameterWriter& out, std::optional<T> const& value) {
        ParameterWriter inner(out.width());
        if (value) { writeFields(inner, *value); }
        Counted::write(out, inner.take());
    }
    template <class T> static void show(FieldValues& values, char const* name, std::optional<T> const& value) {
        if (value) { Record::show(values, name, *value); }
    }
};

} // namespace codecs

// ---- a layout

template <class Form, class T, class Codec> struct Field {
    char const* name;
    T Form::*pointer;

    bool read(ParameterReader& in, Form& form) const { return Codec::read(in, form.*pointer); }
    void write(ParameterWriter& out, Form const& form) const { Codec::write(out, form.*pointer); }
    void show(FieldValues& values, Form const& form) const { Codec::show(values, name, form.*pointer); }
    void names(std::vector<std::string>& names) const { names.emplace_back(name); }
};

/// A field that only some forms have, by what stands before it.
template <class Form, class Inner> struct ConditionalField {
    bool (*applies)(Form const&);
    Inner inner;

    bool read(ParameterReader& in, Form& form) const { return !applies(form) || inner.read(in, form); }
    void write(ParameterWriter& out, Form const& form) const {
        if (applies(form)) { inner.write(out, form); }
    }
    void show(FieldValues& values, Form const& form) const {
        if (applies(form)) { inner.show(values, form); }
    }
    void names(std::vector<std::string>& names) const { inner.names(names); }
};

/// A record's fields; known by the record's own layout.
template <class Form, class T, class Codec> struct RecordField : Field<Form, T, Codec> {
    void names(std::vector<std::string>& names) const;
};

template <class... Fields> constexpr std::tuple<Fields...> layout(Fields... fields) { return {fields...}; }

template <class Form, class T> constexpr auto number(char const* name, T Form::*pointer) {
    return Field<Form, T, codecs::Number<sizeof(T)>>{name, pointer};
}
template <class Form, class T> constexpr auto number(char const* name, std::optional<T> Form::*pointer) {
    return Field<Form, std::optional<T>, codecs::Optional<codecs::Number<sizeof(T)>>>{name, pointer};
}
/// Three bytes: addresses and sizes of the 500 series' memory.
template <class Form> constexpr auto number24(char const* name, std::uint32_t Form::*pointer) {
    return Field<Form, std::uint32_t, codecs::Number<3>>{name, pointer};
}
template <class Form> constexpr auto node(char const* name, NodeId Form::*pointer) {
    return Field<Form, NodeId, codecs::Node>{name, pointer};
}
template <class Form> constexpr auto nodes(char const* name, std::vector<NodeId> Form::*pointer) {
    return Field<Form, std::vector<NodeId>, codecs::NodeList>{name, pointer};
}
template <class Form> constexpr auto counted(char const* name, Bytes Form::*pointer) {
    return Field<Form, Bytes, codecs::Counted>{name, pointer};
}
template <class Form> constexpr auto rest(char const* name, Bytes Form::*pointer) {
    return Field<Form, Bytes, codecs::Rest>{name, pointer};
}
template <class Form, std::size_t count>
constexpr auto array(char const* name, std::array<Byte, count> Form::*pointer) {
    return Field<Form, std::array<Byte, count>, codecs::Array<count>>{name, pointer};
}
template <class Form, std::size_t count>
constexpr auto array(char const* name, std::optional<std::array<Byte, count>> Form::*pointer) {
    return Field<Form, std::optional<std::array<Byte, count>>, codecs::Optional<codecs::Array<count>>>{name, pointer};
}
template <std::size_t count, class Form> constexpr auto text(char const* name, std::string Form::*pointer) {
    return Field<Form, std::string, codecs::Text<count>>{name, pointer};
}
template <class Form> constexpr auto countedMask(char const* name, BitMask Form::*pointer) {
    return Field<Form, BitMask, codecs::Mask<codecs::Counted>>{name, pointer};
}
template <class Form> constexpr auto restMask(char const* name, BitMask Form::*pointer) {
    return Field<Form, BitMask, codecs::Mask<codecs::Rest>>{name, pointer};
}
template <class Form, class T> constexpr auto record(T Form::*pointer) {
    return RecordField<Form, T, codecs::Record>{{"", pointer}};
}
template <std::size_t size, class Form, class T> constexpr auto optionalRecord(std::optional<T> Form::*pointer) {
    return RecordField<Form, std::optional<T>, codecs::Optional<codecs::SizedRecord<size>>>{{"", pointer}};
}
template <class Form, class T> constexpr auto countedRecord(std::optional<T> Form::*pointer) {
    return RecordField<Form, std::optional<T>, codecs::CountedRecord>{{"", pointer}};
}
template <class Form, class Inner> constexpr auto when(bool (*applies)(Form const&), Inner inner) {
    return ConditionalField<Form, Inner>{applies, inner};
}

// ---- the folds

template <class Form> bool readFields(ParameterReader& in, Form& form) {
    return std::apply([&](auto const&... field) { return (field.read(in, form) && ...); }, Form::fields());
}

template <class Form> void writeFields(ParameterWriter& out, Form const& form) {
    std::apply([&](auto const&... field) { (field.write(out, form), ...); }, Form::fields());
}

template <class Form> void showFields(FieldValues& values, Form const& form) {
    std::apply([&](auto const&... field) { (field.show(values, form), ...); }, Form::fields());
}

template <class Form> void nameFields(std::vector<std::string>& names) {
    std::apply([&](auto const&... field) { (field.names(names), ...); }, Form::fields());
}

namespace codecs {
template <class T> struct RecordOf { using type = T; };
template <class T> struct RecordOf<std::optional<T>> { using type = T; };
} // namespace codecs

template <class Form, class T, class Codec>
void RecordField<Form, T, Codec>::names(std::vector<std::string>& names) const {
    nameFields<typename codecs::RecordOf<T>::type>(names);
}

/// A form and what its frame held on top of it: newer modules add bytes, and a host has to pass over them.
template <class Form> struct Decoded {
    Form form;
    Bytes tail;
};

/// Nothing where the parameters are too short, or do not agree with their own counts.
template <class Form> std::optional<Decoded<Form>> decodeForm(Bytes const& parameters, NodeIdWidth width) {
    ParameterReader in(parameters, width);
    Decoded<Form> decoded;
    if (!readFields(in, decoded.form)) { return std::nullopt; }
    in.take(in.left(), decoded.tail);
    return decoded;
}

template <class Form> Bytes encodeForm(Form const& form, NodeIdWidth width, Bytes const& tail = {}) {
    ParameterWriter out(width);
    writeFields(out, form);
    out.put(tail);
    return out.take();
}

} // namespace zorv::serialapi
