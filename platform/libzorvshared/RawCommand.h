// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/FramedRecord.h"
#include "platform/libzorvshared/GenericCommand.h"

#include <string>

namespace zorv {

/// A command that is kept as the bytes in which it was received, or is to be sent.
class ZORV_EXPORT RawCommand : public FramedRecord<RawCommand, GenericCommand> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    RawCommand() = default;
    explicit RawCommand(std::vector<unsigned char> const& data) : data_(data) {}

    std::vector<unsigned char> bytes() const override { return data_; }

private:
    friend FramedRecord;
    struct Wire;

    std::vector<unsigned char> data_; // command class, command, parameters
};

extern template class FramedRecord<RawCommand, GenericCommand>;

} // namespace zorv
