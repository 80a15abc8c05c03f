// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ControllerInfoMsg.h"

#include "platform/libtransport/format16Bits.h"
#include "platform/libtransport/hexDigits.h"
#include "platform/libtransport/tables/EnumTable.h"
#include "platform/libzorvshared/KernelX.h"
#include "transport/displayRow.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <locale>
#include <sstream>

namespace zorv {

std::string const ControllerInfoMsg::NAME("ControllerInfoMsg");
SerialRegistrar const ControllerInfoMsg::registrar("zorv::" + NAME, &ControllerInfoMsg::serialFactory);

namespace ControllerInfoOption {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace ControllerInfoOption

struct ControllerInfoMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&ControllerInfoMsg::displayOptions_>("which sections are shown"),
                        member<&ControllerInfoMsg::moduleType_>("kind of the module"),
                        member<&ControllerInfoMsg::fwVersion_>("firmware of the module"),
                        member<&ControllerInfoMsg::sucNodeId_>("node id of the network's SUC; 0 without one"),
                        member<&ControllerInfoMsg::controllerCapabilities_>("what the controller can do"),
                        member<&ControllerInfoMsg::controllerRole_>("the controller's part in its network"),
                        member<&ControllerInfoMsg::serialCapabilities_>("what the serial interface can do"),
                        member<&ControllerInfoMsg::deviceInfo_>("the daemon as a device"),
                        member<&ControllerInfoMsg::nodeCount_>("number of nodes in the network"),
                        member<&ControllerInfoMsg::remoteQueueSize_>("length of the over-the-air queue"),
                        member<&ControllerInfoMsg::jobsQueueSize_>("number of jobs in progress"),
                        member<&ControllerInfoMsg::workQueueSize_>("length of the message queue"),
                        member<&ControllerInfoMsg::deviceStatus_>("the module's status"),
                        member<&ControllerInfoMsg::securityStatus_>("the network's security"),
                        member<&ControllerInfoMsg::uptime_>("since the daemon started, seconds"));
};

template class MessageOf<ControllerInfoMsg, Confirmable>;

ControllerInfoMsg::ControllerInfoMsg() {
    static auto const systemType = KernelX::GetSystemType();
    deviceInfo_.manufacturer(Manufacturer(ManufacturerId::zorv, 0, systemType));
}

ControllerInfoMsg::ControllerInfoMsg(ControllerInfoOption::Enum displayOptions, ModuleType::Enum moduleType,
                                     std::string const& fwVersion, unsigned char sucNodeId,
                                     ControllerCapabilities::Enum controllerCapabilities,
                                     ControllerRole::Enum controllerRole, SerialCapabilities const& serialCapabilities,
                                     DeviceInfo const& deviceInfo, unsigned int nodeCount, unsigned int remoteQueueSize,
                                     unsigned int jobsQueueSize, unsigned int workQueueSize,
                                     DeviceStatus::Enum deviceStatus, SecurityStatus::Enum securityStatus,
                                     double uptime)
    : displayOptions_(displayOptions),
      moduleType_(moduleType),
      fwVersion_(fwVersion),
      sucNodeId_(sucNodeId),
      controllerCapabilities_(controllerCapabilities),
      controllerRole_(controllerRole),
      serialCapabilities_(serialCapabilities),
      deviceInfo_(deviceInfo),
      nodeCount_(nodeCount),
      remoteQueueSize_(remoteQueueSize),
      jobsQueueSize_(jobsQueueSize),
      workQueueSize_(workQueueSize),
      deviceStatus_(deviceStatus),
      securityStatus_(securityStatus),
      uptime_(uptime) {}

boost::shared_ptr<ControllerInfoMsg> ControllerInfoMsg::create() { return boost::make_shared<ControllerInfoMsg>(); }

boost::shared_ptr<ControllerInfoMsg> ControllerInfoMsg::create(ControllerInfoOption::Enum option) {
    auto request = create();
    request->displayOptions_ = option;
    request->deviceInfo_ = DeviceInfo(); // the client is no daemon
    return request;
}

boost::shared_ptr<ControllerInfoMsg>
ControllerInfoMsg::create(ControllerInfoOption::Enum option, ModuleType::Enum moduleType, std::string const& fwVersion,
                          unsigned char sucNodeId, ControllerCapabilities::Enum capabilities, ControllerRole::Enum role,
                          SerialCapabilities const& serialCapabilities, DeviceInfo const& deviceInfo,
                          unsigned int nodeCount, unsigned int remoteQueueSize, unsigned int jobsQueueSize,
                          unsigned int workQueueSize, DeviceStatus::Enum deviceStatus,
                          SecurityStatus::Enum securityStatus, double uptime) {
    auto report = boost::make_shared<ControllerInfoMsg>(
        option, moduleType, fwVersion, sucNodeId, capabilities, role, serialCapabilities, deviceInfo, nodeCount,
        remoteQueueSize, jobsQueueSize, workQueueSize, deviceStatus, securityStatus, uptime);
    report->role(MessageRole::report);
    report->result(ZResult::success);
    return report;
}

boost::shared_ptr<ControllerInfoMsg> ControllerInfoMsg::create(
    boost::shared_ptr<ControllerInfoMsg> const& request, ControllerInfoOption::Enum option, ModuleType::Enum moduleType,
    std::string const& fwVersion, unsigned char sucNodeId, ControllerCapabilities::Enum capabilities,
    ControllerRole::Enum role, SerialCapabilities const& serialCapabilities, DeviceInfo const& deviceInfo,
    unsigned int nodeCount, unsigned int remoteQueueSize, unsigned int jobsQueueSize, unsigned int workQueueSize,
    DeviceStatus::Enum deviceStatus, SecurityStatus::Enum securityStatus, double uptime) {
    auto response =
        create(option, moduleType, fwVersion, sucNodeId, capabilities, role, serialCapabilities, deviceInfo, nodeCount,
               remoteQueueSize, jobsQueueSize, workQueueSize, deviceStatus, securityStatus, uptime);
    response->setResponse(*request);
    return response;
}

namespace {

/// Such as "1d 2h 3m 4.25s", with the line end that ends the cell.
std::string formatUptime(double uptime) {
    double whole = 0;
    double const fraction = std::modf(std::isfinite(uptime) ? uptime : 0, &whole);
    // A time beyond the range of int, which only a peer can send, is shown as the longest in that range.
    using Limits = std::numeric_limits<int>;
    auto const seconds = static_cast<int>(std::clamp<double>(whole, Limits::min(), Limits::max()));
    std::ostringstream os;
    os.imbue(std::locale::classic());
    os << seconds / 86400 << "d " << seconds / 3600 % 24 << "h " << seconds / 60 % 60 << "m " << seconds % 60 + fraction
       << "s\n";
    return os.str();
}

} // namespace

void ControllerInfoMsg::displayController(StringVecVec& rows) const {
    displayRow(rows, "SUC node id:", sucNodeId_);
    displayRow(rows, "Controller role:", controllerRole_);
    displayRow(rows, "Module type:", moduleType_);
    displayRow(rows, "FW version:", fwVersion_);
    displayRow(rows, "Chip manufacturer id:", serialCapabilities_.manufacturerId());
    displayRow(rows, "Chip product type:", format16Bits(serialCapabilities_.productType(), false));
    displayRow(rows, "Chip product id:", format16Bits(serialCapabilities_.productId(), false));
    deviceInfo_.manufacturer().prefix("Daemon ").accumulateDisplay(rows);
    displayRow(rows, "API version:", serialCapabilities_.apiVersion());
    displayRow(rows, "API revision:", serialCapabilities_.apiRevision());
    displayRow(rows, "Node count:", nodeCount_);
    displayRow(rows, "Ota queue size:", remoteQueueSize_);
    displayRow(rows, "Inprogress queue size:", jobsQueueSize_);
    displayRow(rows, "Message queue size:", workQueueSize_);
    displayRow(rows, "Device status:", deviceStatus_);
    displayRow(rows, "Security status:", securityStatus_);
    displayRow(rows, "Up time:", formatUptime(uptime_));
    if (agentData_) { agentData_->accumulateDisplay(rows); }
}

void ControllerInfoMsg::displayCommands(StringVecVec& rows) const {
    displayRow(rows, "Supported Commands:");
    for (auto const command : serialCapabilities_.commands()) {
        displayRow(rows, command, "0x" + hexDigitsFrom(static_cast<unsigned int>(command), 2));
    }
}

void ControllerInfoMsg::accumulateDisplay(StringVecVec& rows) const {
    switch (displayOptions_) {
    case ControllerInfoOption::capabilities:
        deviceInfo_.protocolInfo().accumulateDisplay(rows); // only here; "all" shows the rest without these rows
        return displayController(rows);
    case ControllerInfoOption::commands: return displayCommands(rows);
    case ControllerInfoOption::info: return deviceInfo_.accumulateDisplay(rows);
    case ControllerInfoOption::all:
        deviceInfo_.accumulateDisplay(rows);
        displayController(rows);
        return displayCommands(rows);
    }
}

} // namespace zorv
