// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/ControllerCapabilities.h"
#include "platform/libzorvshared/ControllerRole.h"
#include "platform/libzorvshared/DeviceInfo.h"
#include "platform/libzorvshared/DeviceStatus.h"
#include "platform/libzorvshared/ModuleType.h"
#include "platform/libzorvshared/SecurityStatus.h"
#include "platform/libzorvshared/SerialCapabilities.h"
#include "zwave/libquillet/CliDisplayMsg.h"

namespace zorv {

/// Which sections of the controller information the command-line client shows.
namespace ControllerInfoOption {

enum Enum : int { capabilities, commands, info, all };

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace ControllerInfoOption

// Larger than most messages: its fifteen members all come with every report.

/// Describes the controller module and the daemon. A client asks with the option that it wants to see; the answer holds
/// everything. The daemon also sends it as a report.
class QUILLET_EXPORT ControllerInfoMsg : public MessageOf<ControllerInfoMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    /// Unlike a request, it describes a daemon of our own on this machine.
    ControllerInfoMsg();
    ControllerInfoMsg(ControllerInfoOption::Enum displayOptions, ModuleType::Enum moduleType,
                      std::string const& fwVersion, unsigned char sucNodeId,
                      ControllerCapabilities::Enum controllerCapabilities, ControllerRole::Enum controllerRole,
                      SerialCapabilities const& serialCapabilities, DeviceInfo const& deviceInfo,
                      unsigned int nodeCount, unsigned int remoteQueueSize, unsigned int jobsQueueSize,
                      unsigned int workQueueSize, DeviceStatus::Enum deviceStatus, SecurityStatus::Enum securityStatus,
                      double uptime);

    static boost::shared_ptr<ControllerInfoMsg> create();
    static boost::shared_ptr<ControllerInfoMsg> create(ControllerInfoOption::Enum option);
    /// The daemon's report, with result success.
    static boost::shared_ptr<ControllerInfoMsg>
    create(ControllerInfoOption::Enum option, ModuleType::Enum moduleType, std::string const& fwVersion,
           unsigned char sucNodeId, ControllerCapabilities::Enum capabilities, ControllerRole::Enum role,
           SerialCapabilities const& serialCapabilities, DeviceInfo const& deviceInfo, unsigned int nodeCount,
           unsigned int remoteQueueSize, unsigned int jobsQueueSize, unsigned int workQueueSize,
           DeviceStatus::Enum deviceStatus, SecurityStatus::Enum securityStatus, double uptime);
    /// The report as an answer. Most response forms check the request; this one is the caller's duty.
    static boost::shared_ptr<ControllerInfoMsg>
    create(boost::shared_ptr<ControllerInfoMsg> const& request, ControllerInfoOption::Enum option,
           ModuleType::Enum moduleType, std::string const& fwVersion, unsigned char sucNodeId,
           ControllerCapabilities::Enum capabilities, ControllerRole::Enum role,
           SerialCapabilities const& serialCapabilities, DeviceInfo const& deviceInfo, unsigned int nodeCount,
           unsigned int remoteQueueSize, unsigned int jobsQueueSize, unsigned int workQueueSize,
           DeviceStatus::Enum deviceStatus, SecurityStatus::Enum securityStatus, double uptime);

    /// Says which agent the answer concerns, for the display; it does not travel.
    void agentData(boost::shared_ptr<AgentData> const& agentData) { agentData_ = agentData; }

    ControllerInfoOption::Enum displayOptions() const noexcept { return displayOptions_; }
    ModuleType::Enum moduleType() const noexcept { return moduleType_; }
    std::string const& fwVersion() const noexcept { return fwVersion_; }
    unsigned char sucNodeId() const noexcept { return sucNodeId_; }
    ControllerCapabilities::Enum controllerCapabilities() const noexcept { return controllerCapabilities_; }
    ControllerRole::Enum controllerRole() const noexcept { return controllerRole_; }
    SerialCapabilities const& serialCapabilities() const noexcept { return serialCapabilities_; }
    DeviceInfo const& deviceInfo() const noexcept { return deviceInfo_; }
    unsigned int nodeCount() const noexcept { return nodeCount_; }
    unsigned int remoteQueueSize() const noexcept { return remoteQueueSize_; }
    unsigned int jobsQueueSize() const noexcept { return jobsQueueSize_; }
    unsigned int workQueueSize() const noexcept { return workQueueSize_; }
    DeviceStatus::Enum deviceStatus() const noexcept { return deviceStatus_; }
    SecurityStatus::Enum securityStatus() const noexcept { return securityStatus_; }
    double uptime() const noexcept { return uptime_; }
    boost::shared_ptr<AgentData> const& agentData() const noexcept { return agentData_; }

    /// Appends the sections that the display option asks for.
    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    void displayController(StringVecVec& rows) const;
    void displayCommands(StringVecVec& rows) const;

    ControllerInfoOption::Enum displayOptions_ = ControllerInfoOption::capabilities;
    ModuleType::Enum moduleType_ = ModuleType::unknown;
    std::string fwVersion_;
    unsigned char sucNodeId_ = 0;
    ControllerCapabilities::Enum controllerCapabilities_ = {};
    ControllerRole::Enum controllerRole_ = ControllerRole::unknown;
    SerialCapabilities serialCapabilities_;
    DeviceInfo deviceInfo_; // the daemon's own
    unsigned int nodeCount_ = 0;
    unsigned int remoteQueueSize_ = 0; // messages on their way over the air
    unsigned int jobsQueueSize_ = 0;   // jobs in progress
    unsigned int workQueueSize_ = 0;   // messages that wait
    DeviceStatus::Enum deviceStatus_ = DeviceStatus::unknown;
    SecurityStatus::Enum securityStatus_ = SecurityStatus::unknown;
    double uptime_ = 0;                      // seconds
    boost::shared_ptr<AgentData> agentData_; // the client's own
};

extern template class MessageOf<ControllerInfoMsg, Confirmable>;

} // namespace zorv
