// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/Serializable.h"

namespace zorv {

class SerialRegistrar;
struct TypeDescriptor;

/// What every record that is referred to derives from its member table `Self::Wire::members`, and from its statics
/// `NAME` and `registrar`.
///
/// Such a record travels as a framed object, since a reference does not tell its class. FramedRecordImpl.h defines the
/// operations; each record's source includes it and instantiates them for its class. The record's header declares that
/// (`extern template`), so that no other source tries to.
template <class Self, class Base = Serializable> class ZORV_EXPORT FramedRecord : public Base {
public:
    FramedRecord() : Base(1) {}

    void serialInserter(Serializer& s) const override;

    /// Reads the record from the serializer's selection; members whose keys are absent keep what they hold.
    void serialExtract(Serializer& s) override;

    /// Reads into `target`, or into a new record that the caller owns where `target` is null.
    static Serializable* serialFactory(Serializer& s, Serializable* target);

    static char const* serialName() noexcept;
    [[gnu::cold]] static TypeDescriptor describe();
};

} // namespace zorv
