#pragma once

#include "platform/libtransport/SerialRegistrar.h"
#include "platform/libzorvshared/GenericCommand.h"

#include <string>

namespace zorv {

struct TypeDescriptor;

/// A command that is kept as the bytes in which it was received, or is to be sent.
class ZORV_EXPORT RawCommand : public GenericCommand {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    RawCommand() = default;
    explicit RawCommand(std::vector<unsigned char> const& data) : data_(data) {}

    std::vector<unsigned char> bytes() const override { return data_; }

    void serialInserter(Serializer& s) const override;
    void serialExtract(Serializer& s) override;
    static Serializable* serialFactory(Serializer& s, Serializable* target);
    static char const* serialName() noexcept;
    static TypeDescriptor describe();

private:
    struct Wire;

    std::vector<unsigned char> data_; // command class, command, parameters
};

} // namespace zorv
