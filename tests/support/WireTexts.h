// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/TypeDescriptor.h"
#include "tools/WireClasses.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace zorv {

/// Makes wire texts of every class from the descriptors: as a writer would write them, but with any values.
class WireTexts {
public:
    /// A number from 0 to `limit` - 1; smaller ones make simpler texts.
    using Below = std::function<std::uint64_t(std::uint64_t limit)>;

    explicit WireTexts(Below below) : below_(std::move(below)) {}

    /// All classes, by serial name; those that are read by themselves are what can be made.
    static std::map<std::string, WireClass> const& classes();

    /// The serial names of the classes that can be made.
    static std::vector<std::string> const& names();

    /// An object of the class.
    std::string object(std::string const& serialName);

    /// A value of the type.
    std::string value(TypeDescriptor const& type);

private:
    std::string frame(std::string const& serialName);
    std::string members(std::vector<MemberDescriptor> const& members, std::string text);
    std::string scalar(TypeDescriptor const& type);
    std::string text();
    std::string flags(TypeDescriptor const& type);
    std::string openText(TypeDescriptor const& type);
    std::string reference(std::string const& serialName);
    std::string list(TypeDescriptor const& element);
    std::string pairs(TypeDescriptor const& key, TypeDescriptor const& value);
    std::size_t count();
    std::size_t index(std::size_t size) { return static_cast<std::size_t>(below_(size)); }

    Below below_;
    unsigned int depth_ = 0; ///< of objects in objects
};

} // namespace zorv
