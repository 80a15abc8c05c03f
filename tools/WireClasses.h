// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/TypeDescriptor.h"

#include <json/value.h>

#include <map>
#include <string>
#include <vector>

namespace zorv {

/// One class of framed objects: a registered one, or a base whose frame stands inside theirs.
struct WireClass {
    TypeDescriptor type;
    bool registered = false; ///< whether it is read by itself
    bool isMessage = false;  ///< whether TMessage is among its bases
    Json::Value frame;       ///< a default object's, as it is written
};

/// All classes, by serial name.
///
/// The classes come from the registry, and their frames from what a default object writes, so nothing is listed here by
/// hand. A member without a description is a std::logic_error.
std::map<std::string, WireClass> wireClasses();

/// The registered classes that are, or derive from, the class of that name.
std::vector<std::string> kindsOf(std::map<std::string, WireClass> const& classes, std::string const& name);

/// The types of a kind that the members of the classes have, directly or within records and lists, by their names.
std::map<std::string, TypeDescriptor> typesOfKind(std::map<std::string, WireClass> const& classes,
                                                  std::vector<TypeDescriptor::Kind> const& kinds);

Json::Value parseJson(std::string const& text);

} // namespace zorv
