// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/TConfirmable.h"
#include "zwave/libquillet/Export.h"

#include <boost/shared_ptr.hpp>

#include <iosfwd>
#include <type_traits>

namespace zorv {

class SerialRegistrar;
struct TypeDescriptor;

/// Gives confirmable messages their `clone`; the others have none.
template <class Self, class Base, bool confirmable = std::is_base_of_v<TConfirmable, Base>> class QUILLET_EXPORT CloneOf
    : public Base {
public:
    using Base::Base;
};

template <class Self, class Base> class QUILLET_EXPORT CloneOf<Self, Base, true> : public Base {
public:
    using Base::Base;

    /// A copy of the message, made by its copy constructor.
    boost::shared_ptr<TConfirmable> clone() const override;
};

/// What every message class derives from its member table `Self::Wire::members`, and from its statics `NAME` and
/// `registrar`.
///
/// MessageOfImpl.h defines the operations; each message's source includes it and instantiates them for its class. The
/// message's header declares that (`extern template`), so that no other source tries to.
template <class Self, class Base> class QUILLET_EXPORT MessageOf : public CloneOf<Self, Base> {
public:
    using CloneOf<Self, Base>::CloneOf;

    /// Writes the message as a framed JSON object.
    void serialInserter(Serializer& s) const override;

    /// Reads the message from the serializer's selection; members whose keys are absent keep what they hold.
    void serialExtract(Serializer& s) override;

    /// Reads into `target`, or into a new message that the caller owns where `target` is null.
    static Serializable* serialFactory(Serializer& s, Serializable* target);

    /// Writes the message's JSON text.
    void print(std::ostream& os) const override;

    static char const* serialName() noexcept;
    [[gnu::cold]] static TypeDescriptor describe();

private:
    Self const& self() const noexcept { return static_cast<Self const&>(*this); }
};

} // namespace zorv
