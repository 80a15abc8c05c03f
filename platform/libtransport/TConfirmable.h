// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/TMessage.h"
#include "platform/libtransport/TResult.h"

namespace zorv {

/// A message that carries a result code.
class ZORV_EXPORT TConfirmable : public TMessage {
public:
    explicit TConfirmable(TResult::Enum result) : result_(result) {}

    void serialInserter(Serializer& s) const override;
    void serialExtract(Serializer& s) override;

    TConfirmable* asConfirmable() noexcept final { return this; }

    /// A copy of the message, made by its copy constructor.
    virtual boost::shared_ptr<TConfirmable> clone() const;

    TResult::Enum result() const noexcept { return result_; }
    void result(TResult::Enum result) noexcept { result_ = result; }

    static char const* serialName() noexcept { return "zorv::TConfirmable"; }
    static TypeDescriptor describe();

private:
    struct Wire;

    TResult::Enum result_;
};

} // namespace zorv
