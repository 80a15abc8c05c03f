// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/Serializable.h"

#include <vector>

namespace zorv {

/// A command of a command class, as nodes exchange them: the application data of one frame.
class ZORV_EXPORT GenericCommand : public Serializable {
public:
    explicit GenericCommand(int version) noexcept : Serializable(version) {}

    /// The encoded command: command class, command, parameters.
    virtual std::vector<unsigned char> bytes() const = 0;

    void serialInserter(Serializer& s) const override;
    void serialExtract(Serializer& s) override;
    static char const* serialName() noexcept { return "zorv::GenericCommand"; }
};

} // namespace zorv
