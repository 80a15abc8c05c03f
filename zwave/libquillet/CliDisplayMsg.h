// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// Which agent drives a device: the client process that connected for it.
class QUILLET_EXPORT AgentData {
public:
    AgentData() = default;
    AgentData(unsigned int id, std::string const& uuid, std::string const& room, std::string const& device,
              std::string const& driver)
        : id_(id), uuid_(uuid), room_(room), device_(device), driver_(driver) {}

    static boost::shared_ptr<AgentData> create(unsigned int id, std::string const& uuid, std::string const& room,
                                               std::string const& device, std::string const& driver);

    unsigned int id() const noexcept { return id_; }
    std::string const& uuid() const noexcept { return uuid_; }
    std::string const& room() const noexcept { return room_; }
    std::string const& device() const noexcept { return device_; }
    std::string const& driver() const noexcept { return driver_; }

    /// Appends the members as rows of a label and a value.
    void accumulateDisplay(StringVecVec& rows) const;

private:
    unsigned int id_ = 0;
    std::string uuid_;
    std::string room_;
    std::string device_;
    std::string driver_;
};

/// Carries a table that is ready to be shown. The daemon fills it, as the answer to a command-line client's request.
class QUILLET_EXPORT CliDisplayMsg : public MessageOf<CliDisplayMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    CliDisplayMsg() = default;
    explicit CliDisplayMsg(StringVecVec const& data) : data_(data) {}

    static boost::shared_ptr<CliDisplayMsg> create(StringVecVec const& data);
    static boost::shared_ptr<CliDisplayMsg> create(boost::shared_ptr<CliDisplayMsg> const& request,
                                                   ZResult::Enum result, StringVecVec const& data);

    StringVecVec const& data() const noexcept { return data_; }

    /// Appends the rows as they are.
    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    StringVecVec data_;
};

extern template class MessageOf<CliDisplayMsg, Confirmable>;

} // namespace zorv
