// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

namespace zorv {

class Serializer;
class TMessage;

/// Root of everything that is written to and read from JSON text through a Serializer.
class ZORV_EXPORT Serializable {
public:
    explicit Serializable(int version) noexcept : version_(version) {}
    virtual ~Serializable() = default;

    /// Writes the object as one JSON object.
    virtual void serialInserter(Serializer& s) const;

    /// Reads the object from the selected value; members whose keys are absent keep what they hold.
    virtual void serialExtract(Serializer& s);

    /// The object as a message; null where it is none. Asked for every line that arrives: a dynamic_cast compares names of
    /// classes, and takes as long as the reading of several members.
    virtual TMessage* asMessage() noexcept { return nullptr; }

    /// Version of the class's wire form.
    int version() const noexcept { return version_; }

    static char const* serialName() noexcept { return "zorv::Serializable"; }

protected:
    Serializable(Serializable const&) = default;
    Serializable& operator=(Serializable const&) = default;
    Serializable(Serializable&&) = default;
    Serializable& operator=(Serializable&&) = default;

    int version_;
};

} // namespace zorv
