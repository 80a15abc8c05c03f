// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/Serializable.h"
#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/TcpEndpoint.h"
#include "platform/libtransport/TimeStamp.h"
#include "platform/libtransport/limits.h"
#include "platform/libtransport/tables/EnumDeclaration.h"
#include "platform/libtransport/throwInvalidEnum.h"

#include <boost/shared_ptr.hpp>
#include <boost/unordered_map.hpp>
#include <boost/uuid/uuid.hpp>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// How the member types of messages and records are written and read, beyond what the Serializer knows itself.

namespace zorv {

// ---- enumerations: their text

template <class Enum> std::enable_if_t<std::is_enum_v<Enum>, Serializer&> operator<<(Serializer& s, Enum value) {
    write(s, value);
    return s;
}

template <class Enum> std::enable_if_t<std::is_enum_v<Enum>, Serializer&> operator>>(Serializer& s, Enum& value) {
    if (s.skipAbsent()) { return s; }
    auto const text = s.text();
    try {
        parse(text, value);
    } catch (InvalidEnumError const& error) { s.fail(error); }
    s.drop();
    return s;
}

// ---- members of tables: what needs not be selected to be read

/// Whether readMember() takes members of this type.
template <class T> constexpr bool hasShortReading =
    std::is_enum_v<T> || (std::is_integral_v<T> && !std::is_same_v<T, char>) || std::is_same_v<T, std::string> ||
    std::is_same_v<T, TimeStamp> || std::is_same_v<T, boost::uuids::uuid> || std::is_same_v<T, TcpEndpointValue>;

template <class T> std::enable_if_t<std::is_integral_v<T> || std::is_same_v<T, std::string>>
readMember(Serializer& s, std::string_view key, T& value) {
    s.read(key, value);
}

template <class Enum>
std::enable_if_t<std::is_enum_v<Enum>> readMember(Serializer& s, std::string_view key, Enum& value) {
    auto const text = s.nextText(key);
    if (text.data() != nullptr && tryParse(text, value)) {
        s.passText(text);
    } else {
        s.enter(key) >> value;
    }
}

ZORV_EXPORT void readMember(Serializer& s, std::string_view key, TimeStamp& value);
ZORV_EXPORT void readMember(Serializer& s, std::string_view key, boost::uuids::uuid& value);
ZORV_EXPORT void readMember(Serializer& s, std::string_view key, TcpEndpointValue& value);

/// The same for the next element of an array, which has that number.
template <class T> void readElement(Serializer& s, std::size_t index, T& value) {
    if constexpr (std::is_enum_v<T>) {
        auto const text = s.nextText({});
        if (text.data() != nullptr && tryParse(text, value)) { return s.passText(text); }
    }
    s.element(index) >> value;
}

// ---- header values: their text

ZORV_EXPORT Serializer& operator<<(Serializer& s, TimeStamp const& value);
ZORV_EXPORT Serializer& operator>>(Serializer& s, TimeStamp& value);
ZORV_EXPORT Serializer& operator<<(Serializer& s, boost::uuids::uuid const& value);
ZORV_EXPORT Serializer& operator>>(Serializer& s, boost::uuids::uuid& value);
ZORV_EXPORT Serializer& operator<<(Serializer& s, TcpEndpoint const& value);
ZORV_EXPORT Serializer& operator>>(Serializer& s, TcpEndpoint& value);
ZORV_EXPORT Serializer& operator<<(Serializer& s, TcpEndpointValue const& value);
ZORV_EXPORT Serializer& operator>>(Serializer& s, TcpEndpointValue& value);

// ---- records: an object of their own

inline Serializer& operator<<(Serializer& s, Serializable const& record) {
    record.serialInserter(s);
    return s;
}

inline Serializer& operator>>(Serializer& s, Serializable& record) {
    record.serialExtract(s);
    return s;
}

// ---- pointers to records: a framed object, or null

template <class T> Serializer& operator<<(Serializer& s, boost::shared_ptr<T> const& pointer) {
    if (!pointer) { return s << null; }
    return s.writeReference(*pointer);
}

/// Null empties the pointer; so does an object of a registered class that is not a `T`.
template <class T> Serializer& operator>>(Serializer& s, boost::shared_ptr<T>& pointer) {
    if (s.skipAbsent()) { return s; }
    if (s.isNull()) {
        s.drop();
        pointer.reset();
        return s;
    }
    std::unique_ptr<Serializable> object(s.deserialize());
    auto* const narrowed = dynamic_cast<T*>(object.get());
    if (narrowed != nullptr) { static_cast<void>(object.release()); } // the pointer below owns it
    pointer.reset(narrowed);
    return s;
}

// ---- lists: an array

template <class T> Serializer& operator<<(Serializer& s, std::vector<T> const& list) {
    s.openValue('[');
    bool first = true;
    for (auto const& element : list) {
        if (!first) { s.writeRaw(","); }
        first = false;
        s << element;
    }
    return s.closeValue(']');
}

/// Reads an array into a vector, which takes the array's length; elements that were there are read over.
template <class T> Serializer& readElements(Serializer& s, std::vector<T>& list) {
    if (s.skipAbsent()) { return s; }
    list.resize(s.size());
    for (std::size_t i = 0; i < list.size(); ++i) { s.element(i) >> list[i]; }
    return s >> finished;
}

// ---- maps: an array of pairs, in the map's own order

/// A map that has more entries than a reader takes is refused.
ZORV_EXPORT void requireFewPairs(std::size_t count);

template <class Map> Serializer& insertPairs(Serializer& s, Map const& map) {
    requireFewPairs(map.size());
    s.openValue('[');
    bool first = true;
    for (auto const& entry : map) {
        if (!first) { s.writeRaw(","); }
        first = false;
        s.openValue('[') << entry.first;
        s.writeRaw(",") << entry.second;
        s.closeValue(']');
    }
    return s.closeValue(']');
}

template <class Key, class Value, class Hash, class Equal>
Serializer& operator<<(Serializer& s, boost::unordered_map<Key, Value, Hash, Equal> const& map) {
    return insertPairs(s, map);
}

template <class Key, class Value> Serializer& operator<<(Serializer& s, std::map<Key, Value> const& map) {
    return insertPairs(s, map);
}

template <class Key, class Value> void reservePairs(std::map<Key, Value>&, std::size_t) {}

template <class Key, class Value, class Hash, class Equal>
void reservePairs(boost::unordered_map<Key, Value, Hash, Equal>& map, std::size_t count) {
    map.reserve(map.size() + count);
}

/// Reads an array of pairs into a map: of equal keys the first wins, and entries that were there are kept.
template <class Map, class RequireArray> Serializer& readPairs(Serializer& s, Map& map, RequireArray requireArray) {
    if (s.skipAbsent()) { return s; }
    requireArray(s);
    auto const count = s.size();
    if (count > limits::maxPairs) {
        s.fail("expected at most " + std::to_string(limits::maxPairs) + " entries, got " + std::to_string(count));
    }
    reservePairs(map, count);
    for (std::size_t i = 0; i < count; ++i) {
        s.element(i);
        requireArray(s);
        if (s.size() < 2) { s.fail("expected a key and a value, got " + std::to_string(s.size()) + " elements"); }
        typename Map::key_type key{};
        typename Map::mapped_type value{};
        readElement(s, 0, key);
        readElement(s, 1, value);
        map.emplace_hint(map.end(), std::move(key), std::move(value)); // a sorted map is written in its order
        s >> finished;
    }
    return s >> finished;
}

} // namespace zorv
