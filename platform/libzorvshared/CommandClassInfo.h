// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/ValueRecord.h"
#include "platform/libzorvshared/CommandClassAttribs.h"

namespace zorv {

/// What is known of one command class of one node.
class ZORV_EXPORT CommandClassInfo : public ValueRecord<CommandClassInfo> {
public:
    CommandClassInfo() noexcept : CommandClassInfo(0, {}) {}
    CommandClassInfo(unsigned char classVersion, CommandClassAttribs::Enum attribs) noexcept
        : classVersion_(classVersion), attribs_(attribs) {}

    /// Version of the command class that the node implements; 0 as long as it has not told.
    unsigned char classVersion() const noexcept { return classVersion_; }
    CommandClassAttribs::Enum attribs() const noexcept { return attribs_; }

private:
    friend ValueRecord;
    struct Wire;

    unsigned char classVersion_;
    CommandClassAttribs::Enum attribs_;
};

extern template class ValueRecord<CommandClassInfo>;

} // namespace zorv
