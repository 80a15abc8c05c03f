// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/SerialValue.h"
#include "zwave/libquillet/ZorvError.h"

#include <boost/unordered_map.hpp>

#include <string>
#include <vector>

// How messages read lists and maps. A message's list of the wrong shape is a SyntaxError, not the Serializer's own
// error: its text is part of the protocol.

namespace zorv {

inline void requireArray(Serializer& s) {
    if (s.isArray()) { return; }
    throw SyntaxError("expected array, got " + std::string(s.typeName()), s.path());
}

/// The vector takes the array's length; elements that were there are read over.
template <class T> Serializer& operator>>(Serializer& s, std::vector<T>& list) {
    if (s.skipAbsent()) { return s; }
    requireArray(s);
    return readElements(s, list);
}

/// Of two elements with equal keys the first wins; entries that the map already has are kept.
template <class Key, class Value, class Hash, class Equal>
Serializer& operator>>(Serializer& s, boost::unordered_map<Key, Value, Hash, Equal>& map) {
    return readPairs(s, map, &requireArray);
}

} // namespace zorv
