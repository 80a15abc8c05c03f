// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/Serializable.h"

namespace zorv {

struct TypeDescriptor;

/// What every value record derives from its member table `Self::Wire::members` and its name `Self::Wire::name`.
///
/// A record travels as an object without a frame, since its class is known from the member that holds it.
/// ValueRecordImpl.h defines the operations; each record's source includes it and instantiates them for its class. The
/// record's header declares that (`extern template`), so that no other source tries to.
template <class Self> class ZORV_EXPORT ValueRecord : public Serializable {
public:
    ValueRecord() noexcept : Serializable(1) {}

    void serialInserter(Serializer& s) const override;

    /// Reads the record from the serializer's selection; members whose keys are absent keep what they hold.
    void serialExtract(Serializer& s) override;

    [[gnu::cold]] static TypeDescriptor describe();
};

} // namespace zorv
