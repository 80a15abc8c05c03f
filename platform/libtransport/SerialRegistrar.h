// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <boost/function.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace zorv {

class Serializable;
class Serializer;

/// Reads an object from the serializer's selection: into the given one, or into a new one that the caller owns.
using SerialFactory = boost::function<Serializable*(Serializer&, Serializable*)>;

/// The process-wide table from serial names to factories.
///
/// It is filled and emptied as libraries are loaded and unloaded, and may be asked from any thread meanwhile.
class ZORV_EXPORT SerialRegistry {
public:
    SerialRegistry() = delete;

    /// The factory that is registered under `serialName`, or an empty one.
    static SerialFactory find(std::string_view serialName);

    /// The registered serial names, in ascending order.
    static std::vector<std::string> names();
};

/// Keeps a class's factory in the registry as long as the object lives.
///
/// A name that is taken already is refused with a WARN line, and the factory that was there first stays.
class ZORV_EXPORT SerialRegistrar {
public:
    SerialRegistrar(std::string const& serialName, SerialFactory factory);
    ~SerialRegistrar();

    SerialRegistrar(SerialRegistrar const&) = delete;
    SerialRegistrar& operator=(SerialRegistrar const&) = delete;

    std::string const& serialName() const noexcept { return serialName_; }

private:
    std::string serialName_;
    bool registered_;
};

} // namespace zorv
