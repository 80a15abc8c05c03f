// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/SerialValue.h"
#include "platform/libtransport/limits.h"
#include "platform/libtransport/tables/TypeDescriptor.h"
#include "platform/libtransport/tables/identifiers.h"

#include <array>
#include <cstddef>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

// The members of a class on the wire, each named once:
//
//     struct PingMsg::Wire {
//         static constexpr auto members = std::make_tuple(
//             member<&PingMsg::destination_>("node to ping"),
//             member<&PingMsg::latencyMs_>("round-trip time, milliseconds"));
//     };
//
// A member's key is its identifier. The writer, the reader and the descriptors are folds over such a table.

namespace zorv {

/// The key of a member, in the forms in which it is read and written.
template <auto pointer> class MemberKey {
    static constexpr auto name = identifiers::nameOfValue<pointer>();
    static_assert(!name.empty(), "this compiler does not tell the member's identifier");
    static_assert(name.size() <= limits::longestShort, "the reader would miss it");

    static constexpr auto makeKey() {
        identifiers::Text<name.size()> text;
        text.append(name);
        return text;
    }
    static constexpr auto makeKeyOfNext() {
        identifiers::Text<name.size() + 4> text;
        text.append(",\"");
        text.append(name);
        text.append("\":");
        return text;
    }

public:
    static constexpr auto plain = makeKey();        ///< latencyMs_
    static constexpr auto ofNext = makeKeyOfNext(); ///< ,"latencyMs_":
};

template <auto memberPointer> struct Member {
    static constexpr auto pointer = memberPointer;
    static constexpr std::string_view key = MemberKey<memberPointer>::plain.view();        ///< with a NUL after it
    static constexpr std::string_view keyOfNext = MemberKey<memberPointer>::ofNext.view(); ///< ,"latencyMs_":
    static constexpr std::string_view keyOfFirst = keyOfNext.substr(1);                    ///< "latencyMs_":

    char const* doc;
};

template <auto pointer> constexpr Member<pointer> member(char const* doc) { return {doc}; }

/// Stands for the base of a class whose frame ends the chain of bases.
struct NoBase {};

/// Writes an object without a frame, for records whose class is known from the place where they stand.
template <class Self, class Members> void insertRecord(Serializer& s, Self const& self, Members const& members) {
    bool first = true;
    s.openValue('{');
    auto const insert = [&](auto const& m) {
        s.writeKey(first ? m.keyOfFirst : m.keyOfNext) << self.*m.pointer;
        first = false;
    };
    std::apply([&](auto const&... m) { (insert(m), ...); }, members);
    s.closeValue('}');
}

/// Writes an object with its frame: serial name, the frame of its base class, members.
template <class Base, class Self, class Members>
void insertFrame(Serializer& s, std::string_view serialName, Self const& self, Members const& members) {
    s.openFrame(serialName);
    if constexpr (!std::is_same_v<Base, NoBase>) { self.Base::serialInserter(s); }
    s.closeValue(']');
    std::apply([&](auto const&... m) { ((s.writeKey(m.keyOfNext) << self.*m.pointer), ...); }, members);
    s.closeValue('}');
}

/// Reads values by their input operators.
struct ValueReader {
    template <class T> void operator()(Serializer& s, T& value) const { s >> value; }
    template <class T> void operator()(Serializer& s, std::vector<T>& list) const { readElements(s, list); }
    template <class Key, class Value> void operator()(Serializer& s, std::map<Key, Value>& map) const {
        readPairs(s, map, [](Serializer const& array) { array.size(); });
    }
};

/// Reads an object that insertRecord wrote.
template <class Reader = ValueReader, class Self, class Members>
void extractRecord(Serializer& s, Self& self, Members const& members, Reader read = {}) {
    auto const extract = [&](auto const& m, auto& value) {
        using T = std::remove_reference_t<decltype(value)>;
        if constexpr (hasShortReading<T>) {
            readMember(s, m.keyOfFirst, value);
        } else {
            s.enter(m.keyOfFirst);
            read(s, value);
        }
    };
    std::apply([&](auto const&... m) { (extract(m, self.*m.pointer), ...); }, members);
    s >> finished;
}

/// Reads an object that insertFrame wrote.
template <class Base, class Reader = ValueReader, class Self, class Members>
void extractFrame(Serializer& s, Self& self, Members const& members, Reader read = {}) {
    if constexpr (!std::is_same_v<Base, NoBase>) {
        s.enterBase(Base::serialName()) >> basector;
        self.Base::serialExtract(s);
        s >> finished;
    }
    extractRecord(s, self, members, read);
}

// ---- descriptors: made for documents and command lines, not for messages on their way, and therefore built for size

template <class T> struct Type {};

inline TypeDescriptor describeType(Type<bool>) { return {TypeDescriptor::Kind::boolean, "bool"}; }
inline TypeDescriptor describeType(Type<double>) { return {TypeDescriptor::Kind::number, "double"}; }
inline TypeDescriptor describeType(Type<std::string>) { return {TypeDescriptor::Kind::text, "string"}; }
inline TypeDescriptor describeType(Type<TimeStamp>) { return {TypeDescriptor::Kind::timeStamp, "time stamp"}; }
inline TypeDescriptor describeType(Type<boost::uuids::uuid>) { return {TypeDescriptor::Kind::uuid, "UUID"}; }
inline TypeDescriptor describeType(Type<TcpEndpointValue>) { return {TypeDescriptor::Kind::endpoint, "TCP endpoint"}; }

template <class Integer> [[gnu::cold]] TypeDescriptor describeInteger(char const* name) {
    using Limits = std::numeric_limits<Integer>;
    return {TypeDescriptor::Kind::integer, name, static_cast<double>(Limits::min()),
            static_cast<double>(Limits::max())};
}

inline TypeDescriptor describeType(Type<int>) { return describeInteger<int>("int"); }
inline TypeDescriptor describeType(Type<unsigned int>) { return describeInteger<unsigned int>("unsigned int"); }
inline TypeDescriptor describeType(Type<unsigned short>) { return describeInteger<unsigned short>("unsigned short"); }
inline TypeDescriptor describeType(Type<unsigned char>) { return describeInteger<unsigned char>("unsigned byte"); }

template <class T> TypeDescriptor describeType(Type<T>);

template <class T> [[gnu::cold]] TypeDescriptor describeType(Type<boost::shared_ptr<T>>) {
    return {TypeDescriptor::Kind::reference, T::serialName()};
}

template <class T> [[gnu::cold]] TypeDescriptor describeType(Type<std::vector<T>>) {
    TypeDescriptor type{TypeDescriptor::Kind::list, "list"};
    type.elements.push_back(describeType(Type<T>()));
    return type;
}

template <class Key, class Value> [[gnu::cold]] TypeDescriptor describePairs() {
    TypeDescriptor type{TypeDescriptor::Kind::pairs, "pairs"};
    type.elements.push_back(describeType(Type<Key>()));
    type.elements.push_back(describeType(Type<Value>()));
    return type;
}

template <class Key, class Value, class Hash, class Equal>
TypeDescriptor describeType(Type<boost::unordered_map<Key, Value, Hash, Equal>>) {
    return describePairs<Key, Value>();
}

template <class Key, class Value> TypeDescriptor describeType(Type<std::map<Key, Value>>) {
    return describePairs<Key, Value>();
}

/// Enumerations describe themselves from their tables, records from their members.
template <class T> TypeDescriptor describeType(Type<T>) {
    if constexpr (std::is_enum_v<T>) {
        return describe(T());
    } else {
        return T::describe();
    }
}

template <class T> [[gnu::cold]] TypeDescriptor describeValue() { return describeType(Type<T>()); }

template <class T> [[gnu::cold]] void insertValue(Serializer& s, void const* value) {
    s << *static_cast<T const*>(value);
}

/// What is known of a member where its type is: what describes it needs no code of its own for each.
struct MemberSample {
    char const* key;
    char const* doc;
    void const* value; ///< of a default-constructed object
    TypeDescriptor (*describe)();
    void (*insert)(Serializer& s, void const* value);
};

ZORV_EXPORT std::vector<MemberDescriptor> describeSamples(MemberSample const* samples, std::size_t count);

template <class Value, class Entry> MemberSample sampleOf(Value const& value, Entry const& m) {
    return {m.key.data(), m.doc, &value, &describeValue<Value>, &insertValue<Value>};
}

/// Describes the members of a class; their defaults are those of `blank`.
template <class Self, class Members>
[[gnu::cold]] std::vector<MemberDescriptor> describeMembers(Self const& blank, Members const& members) {
    return std::apply(
        [&blank](auto const&... m) {
            std::array<MemberSample, sizeof...(m)> const samples{sampleOf(blank.*m.pointer, m)...};
            return describeSamples(samples.data(), samples.size());
        },
        members);
}

/// Describes an object that insertRecord writes.
template <class Self, class Members>
[[gnu::cold]] TypeDescriptor describeRecord(std::string const& name, Self const& blank, Members const& members) {
    TypeDescriptor type{TypeDescriptor::Kind::record, name};
    type.members = describeMembers(blank, members);
    return type;
}

/// Describes an object that insertFrame writes.
template <class Base, class Self, class Members>
[[gnu::cold]] TypeDescriptor describeFrame(std::string const& serialName, Self const& blank, Members const& members) {
    TypeDescriptor type{TypeDescriptor::Kind::framed, serialName};
    if constexpr (!std::is_same_v<Base, NoBase>) { type.base = Base::serialName(); }
    type.members = describeMembers(blank, members);
    return type;
}

} // namespace zorv
